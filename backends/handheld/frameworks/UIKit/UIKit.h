// The public names of the handheld platform's device that this back end uses. On the device, the
// framework's own header of the same name is used instead.

#import <Foundation/Foundation.h>

@interface UIDevice : NSObject
+ (UIDevice*)currentDevice;
@property(nonatomic, readonly) NSString* systemVersion;
@end
