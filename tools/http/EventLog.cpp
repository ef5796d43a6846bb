#include "tools/http/EventLog.h"

#include <algorithm>

namespace quordalvane::http {

Text eventText(std::string_view name, std::string_view data, std::optional<std::uint64_t> number) {
  std::string text;
  if (number) {
    text.append("id: ").append(std::to_string(*number)).append("\n");
  }
  text.append("event: ").append(name).append("\ndata: ").append(data).append("\n\n");
  return std::make_shared<const std::string>(std::move(text));
}

void EventLog::add(std::string_view name, std::string_view data) {
  events_.push_back(eventText(name, data, ++latest_));
  bytes_ += events_.back()->size();
  while (bytes_ > mostBytes_) {
    bytes_ -= events_.front()->size();
    events_.pop_front();
  }
}

bool EventLog::holdsAllAfter(std::uint64_t number) const {
  return number <= latest_ && latest_ - number <= events_.size();
}

Text EventLog::event(std::uint64_t number) const {
  const bool isHeld = number > 0 && number <= latest_ && holdsAllAfter(number - 1);
  return isHeld ? events_[events_.size() - 1 - (latest_ - number)] : nullptr;
}

Text EventReader::current() const {
  return first_.empty() ? log_.event(next_) : first_.front();
}

bool EventReader::hasMore() const {
  return !first_.empty() || next_ <= log_.latest();
}

std::size_t EventReader::read(char* out, std::size_t room) {
  std::size_t count = 0;
  while (count < room) {
    const Text text = current();
    if (text == nullptr) {
      break;
    }
    const std::size_t piece = std::min(room - count, text->size() - offset_);
    std::copy_n(text->data() + offset_, piece, out + count);
    count += piece;
    offset_ += piece;
    if (offset_ == text->size()) {
      offset_ = 0;
      if (first_.empty()) {
        ++next_;
      } else {
        first_.pop_front();
      }
    }
  }
  return count;
}

void EventReader::keepAlive() {
  static const Text line = std::make_shared<const std::string>(":\n\n");
  if (!hasMore()) {
    first_.push_back(line);
  }
}

}  // namespace quordalvane::http
