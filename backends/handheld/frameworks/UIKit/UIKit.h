// Declares those public names of the handheld platform's class for the device that this back end
// uses. A build for the device uses the framework's own header of the same name instead.

#import <Foundation/Foundation.h>

@interface UIDevice : NSObject
+ (UIDevice*)currentDevice;
@property(nonatomic, readonly) NSString* systemVersion;
@end
