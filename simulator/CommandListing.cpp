#include "simulator/CommandListing.h"

#include <algorithm>

#include "simulator/CommandNames.h"
#include "simulator/CommandScanner.h"

namespace quordalvane::simulator {
namespace {

constexpr std::size_t longestRun = 256;  // characters

char shown(std::uint8_t byte) {
  return byte >= 0x20 && byte < 0x7f ? static_cast<char>(byte) : '.';
}

class Lister {
 public:
  Lister(ByteView job, const Dialect& dialect, std::uint64_t from, std::size_t most)
      : job_(job), from_(from), most_(most) {
    scanner_.setDialect(dialect);
  }

  Listing list() {
    std::uint64_t begin = 0;
    for (std::uint64_t i = 0; i < job_.size(); ++i) {
      if (!scanner_.feed(job_[i])) {
        continue;
      }
      if (!add(begin, i + 1)) {
        listing_.next = begin;
        return std::move(listing_);
      }
      begin = i + 1;
    }
    if (begin < job_.size() && begin >= from_) {
      listing_.commands.push_back({begin, job_.size() - begin, "cut off", "", false});
    }
    listing_.next = job_.size();
    return std::move(listing_);
  }

 private:
  bool add(std::uint64_t begin, std::uint64_t end) {
    if (begin < from_) {
      return true;
    }
    const bool isText = end - begin == 1 && job_[begin] >= 0x20;
    if (isText && continuesRun()) {
      ++listing_.commands.back().length;
      listing_.commands.back().meaning += shown(job_[begin]);
      return true;
    }
    if (listing_.commands.size() == most_) {
      return false;
    }
    auto [name, meaning] = nameOf(job_.subspan(begin, end - begin));
    const bool isKnown = scanner_.isKnown();
    if (!isKnown || meaning.empty()) {
      meaning = isKnown ? "no effect here" : "";
    }
    listing_.commands.push_back(
        {begin, end - begin, std::move(name), std::string(meaning), isKnown});
    if (isText) {
      listing_.commands.back().meaning = shown(job_[begin]);
    }
    return true;
  }

  bool continuesRun() const {
    return !listing_.commands.empty() && listing_.commands.back().name == "text" &&
           listing_.commands.back().length < longestRun;
  }

  ByteView job_;
  std::uint64_t from_;
  std::size_t most_;
  CommandScanner scanner_;
  Listing listing_;
};

}  // namespace

Listing listCommands(ByteView job, const Dialect& dialect, std::uint64_t from, std::size_t most) {
  return Lister(job, dialect, from, most).list();
}

}  // namespace quordalvane::simulator
