// The public names of the handheld platform's accessory service, as far as this back end uses them.
// On the device the framework's own header of this name is found instead.

#import <Foundation/Foundation.h>

@interface EAAccessory : NSObject
@property(nonatomic, readonly, getter=isConnected) BOOL connected;
@property(nonatomic, readonly) NSUInteger connectionID;
@property(nonatomic, readonly) NSString* manufacturer;
@property(nonatomic, readonly) NSString* name;
@property(nonatomic, readonly) NSString* modelNumber;
@property(nonatomic, readonly) NSString* serialNumber;
@property(nonatomic, readonly) NSArray* protocolStrings;
@end

@interface EAAccessoryManager : NSObject
+ (EAAccessoryManager*)sharedAccessoryManager;
@property(nonatomic, readonly) NSArray* connectedAccessories;
@end

@interface EASession : NSObject
- (instancetype)initWithAccessory:(EAAccessory*)accessory forProtocol:(NSString*)protocolString;
@property(nonatomic, readonly) NSInputStream* inputStream;
@property(nonatomic, readonly) NSOutputStream* outputStream;
@end
