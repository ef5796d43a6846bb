// Declares the handheld platform's accessory service, with only those public names that this back
// end uses. A build for the device uses the framework's own header of the same name instead.

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
