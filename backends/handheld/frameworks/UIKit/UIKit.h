// Declares the handheld platform's class `UIDevice`, with only those public names that this back
// end uses. A build for the device uses the framework's own header of the same name instead.

#import <Foundation/Foundation.h>

@interface UIDevice : NSObject
+ (UIDevice*)currentDevice;
@property(nonatomic, readonly) NSString* systemVersion;
@end
