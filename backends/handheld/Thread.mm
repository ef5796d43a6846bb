#include <condition_variable>
#include <mutex>

#include "backends/handheld/Frameworks.h"
#include "backends/handheld/Objects.h"
#include "backends/handheld/Routine.h"

namespace {

/// The state of a thread. The thread and its handle share this state.
class Life {
 public:
  enum class Stage { NotStarted, Turning, Ended };

  void enter(Stage stage) {
    const std::lock_guard lock(mutex_);
    stage_ = stage;
    changed_.notify_all();
  }

  bool isTurning() {
    const std::lock_guard lock(mutex_);
    return stage_ == Stage::Turning;
  }

  void awaitStart() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return stage_ != Stage::NotStarted; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  Stage stage_ = Stage::NotStarted;  // guarded by mutex_
};

/// The body of a thread, and the state that the thread reports.
struct Body {
  quordalvane::handheld::Routine routine;
  std::shared_ptr<Life> life;
};

}  // namespace

/// The routine of the framework's thread. It owns `body`.
@interface QuorThreadBody : NSObject {
 @public
  Body* body;
}
- (void)live;
@end

@implementation QuorThreadBody

- (void)live {
  @autoreleasepool {
    // Without an event source the loop would return immediately, and would never run the routines
    // that other threads pass to it.
    NSPort* const source = [NSPort port];
    NSRunLoop* const loop = [NSRunLoop currentRunLoop];
    [loop addPort:source forMode:NSDefaultRunLoopMode];
    body->life->enter(Life::Stage::Turning);
    body->routine.run();
    body->life->enter(Life::Stage::Ended);
    // Runs the routines that other threads passed to the loop before `body->routine` ended.
    [loop runUntilDate:[NSDate date]];
    [loop removePort:source forMode:NSDefaultRunLoopMode];
  }
}

- (void)dealloc {
  delete body;
  [super dealloc];
}

@end

@interface QuorCarriedRoutine : NSObject {
 @public
  quordalvane::handheld::Routine* routine;
}
- (void)run;
@end

@implementation QuorCarriedRoutine

- (void)run {
  routine->run();
}

@end

namespace quordalvane::handheld {
namespace {

class HandheldThread final : public NSThread {
 public:
  explicit HandheldThread(std::function<void()> body)
      : body_(Retained<QuorThreadBody>::adopting([[QuorThreadBody alloc] init])) {
    body_.get()->body = new Body{Routine(std::move(body)), life_};
  }

  bool start() override {
    const bool isStarted = begin();
    body_ = Retained<QuorThreadBody>();  // the thread now owns the body, until the thread ends
    if (isStarted) {
      life_->awaitStart();
    }
    return isStarted;
  }

  void cancel() override {
    ask([this] { [thread_.get() cancel]; });
  }

  bool performAndWait(std::function<void()> routine) override {
    Routine carried(std::move(routine));
    // The routine may destroy this `HandheldThread`. This reference keeps the framework's thread
    // alive until `performAndWait` returns.
    const Retained<::NSThread> thread(thread_.get());
    if (thread.get() != nil && [thread.get() isEqual:[::NSThread currentThread]]) {
      carried.run();
    } else if (life_->isTurning()) {
      carry(carried, thread.get());
    }
    carried.throwIfFailed();
    return carried.hasRun();
  }

 private:
  bool begin() {
    @autoreleasepool {
      @try {
        thread_ = Retained<::NSThread>::adopting([[::NSThread alloc] initWithTarget:body_.get()
                                                                           selector:@selector(live)
                                                                             object:nil]);
        [thread_.get() start];
        return true;
      } @catch (NSException*) {
        return false;
      }
    }
  }

  /// The framework throws an exception if the thread ends without running the routine. The
  /// exception is ignored, because `carried` shows that the routine has not run.
  static void carry(Routine& carried, ::NSThread* thread) {
    @autoreleasepool {
      const auto carrier =
          Retained<QuorCarriedRoutine>::adopting([[QuorCarriedRoutine alloc] init]);
      carrier.get()->routine = &carried;
      @try {
        [carrier.get() performSelector:@selector(run)
                              onThread:thread
                            withObject:nil
                         waitUntilDone:YES];
      } @catch (NSException*) {
      }
    }
  }

  const std::shared_ptr<Life> life_ = std::make_shared<Life>();
  Retained<QuorThreadBody> body_;  // nil after the start
  Retained<::NSThread> thread_;    // nil before the start
};

}  // namespace

std::shared_ptr<NSThread> makeThread(std::function<void()> body) {
  return std::make_shared<HandheldThread>(std::move(body));
}

bool isMainThread() {
  return [::NSThread isMainThread] == YES;
}

}  // namespace quordalvane::handheld
