// The public names of the handheld platform's device, as far as this back end uses them. On the
// device the framework's own header of this name is found instead.

#import <Foundation/Foundation.h>

@interface UIDevice : NSObject
+ (UIDevice*)currentDevice;
@property(nonatomic, readonly) NSString* systemVersion;
@end
