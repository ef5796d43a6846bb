#include "tools/quorport/web/PaperArtist.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <iterator>
#include <utility>

#include "simulator/TextRendering.h"
#include "tools/process/Descriptors.h"

namespace quordalvane::tool {
namespace {

std::string textOf(const PaperArtist::Print& print) {
  simulator::Paper paper(print.width);
  for (const simulator::PaperItem& item : print.items) {
    paper.add(item);
  }
  return simulator::renderText(paper);
}

}  // namespace

PaperArtist::PaperArtist() : done_(openEvent()), thread_([this] { work(); }) {}

PaperArtist::~PaperArtist() {
  {
    const std::scoped_lock lock(mutex_);
    ends_ = true;
  }
  changed_.notify_all();
  thread_.join();
  ::close(done_);
}

bool PaperArtist::add(Print print) {
  const std::scoped_lock lock(mutex_);
  if (!print.items.empty() && weight_ + print.weight > mostWaiting) {
    return false;
  }
  weight_ += print.weight;
  if (!waiting_.empty() && waiting_.back().printer == print.printer && !waiting_.back().isTornOff) {
    Print& last = waiting_.back();
    last.items.insert(last.items.end(), std::make_move_iterator(print.items.begin()),
                      std::make_move_iterator(print.items.end()));
    last.weight += print.weight;
    last.isTornOff = print.isTornOff;
  } else {
    waiting_.push_back(std::move(print));
  }
  changed_.notify_all();
  return true;
}

std::vector<PaperArtist::Drawing> PaperArtist::take() {
  std::uint64_t count = 0;
  [[maybe_unused]] const auto taken = ::read(done_, &count, sizeof count);
  const std::scoped_lock lock(mutex_);
  return std::exchange(drawn_, {});
}

void PaperArtist::work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return ends_ || !waiting_.empty(); });
    if (ends_) {
      return;
    }
    Print print = std::move(waiting_.front());
    waiting_.pop_front();
    const std::size_t weight = print.weight;
    lock.unlock();
    Drawing drawing = draw(std::move(print));
    lock.lock();
    weight_ -= weight;
    drawn_.push_back(std::move(drawing));
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto told = ::write(done_, &one, sizeof one);
  }
}

PaperArtist::Drawing PaperArtist::draw(Print print) {
  Drawing drawing{.printer = print.printer,
                  .change = {},
                  .text = textOf(print),
                  .printed = print.printed,
                  .width = print.width,
                  .length = 0,
                  .isTornOff = print.isTornOff};
  auto& paper = papers_.try_emplace(print.printer, print.width).first->second;
  drawing.change = paper.add(std::move(print.items));
  drawing.length = paper.length();
  if (print.isTornOff) {
    papers_.erase(drawing.printer);
  }
  return drawing;
}

}  // namespace quordalvane::tool
