#import <UIKit/UIKit.h>

#include "backends/handheld/Frameworks.h"
#include "backends/handheld/Objects.h"

namespace quordalvane::handheld {
namespace {

class HandheldDevice final : public UIDevice {
 public:
  std::string systemVersion() override {
    return ask([] { return textOf([[::UIDevice currentDevice] systemVersion]).value_or(""); });
  }
};

}  // namespace

std::unique_ptr<UIDevice> makeDevice() {
  return std::make_unique<HandheldDevice>();
}

}  // namespace quordalvane::handheld
