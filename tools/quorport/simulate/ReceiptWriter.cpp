#include "tools/quorport/simulate/ReceiptWriter.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <exception>
#include <nlohmann/json.hpp>
#include <utility>

#include "simulator/TextRendering.h"
#include "simulator/drawing/ImageRendering.h"
#include "tools/process/Descriptors.h"
#include "tools/quorport/Report.h"

namespace quordalvane::tool {
namespace {

// Returns the approximate size of a job in bytes. The result is never 0, so that the limit
// `mostWaiting` on the size of all waiting jobs limits their number as well.
std::size_t weightOf(const ReceiptWriter::Job& job) {
  return sizeof job + job.paper.weight();
}

DrawnReceipt drawn(const simulator::Paper& paper) {
  DrawnReceipt receipt;
  receipt.text = simulator::renderText(paper);
  if (paper.items().empty()) {
    return receipt;
  }
  const auto picture = simulator::renderPngPicture(paper, DrawnReceipt::pieceRows);
  receipt.width = picture.width;
  receipt.height = picture.height;
  receipt.picture.assign(picture.png.begin(), picture.png.end());
  for (const auto& piece : picture.pieces) {
    receipt.pieces.emplace_back(piece.begin(), piece.end());
  }
  return receipt;
}

}  // namespace

ReceiptWriter::ReceiptWriter(ReceiptFolder* folder)
    : folder_(folder), done_(openEvent()), thread_([this] { work(); }) {}

ReceiptWriter::~ReceiptWriter() {
  {
    const std::scoped_lock lock(mutex_);
    ends_ = true;
    waiting_.clear();
  }
  changed_.notify_all();
  thread_.join();
  ::close(done_);
}

void ReceiptWriter::add(Job job) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return weight_ <= mostWaiting; });
  weight_ += weightOf(job);
  waiting_.push_back(std::move(job));
  changed_.notify_all();
}

std::vector<ReceiptWriter::Done> ReceiptWriter::take() {
  std::uint64_t count = 0;
  [[maybe_unused]] const auto taken = ::read(done_, &count, sizeof count);
  const std::scoped_lock lock(mutex_);
  return std::exchange(written_, {});
}

std::vector<ReceiptWriter::Done> ReceiptWriter::finish() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return waiting_.empty() && !isWriting_; });
  return std::exchange(written_, {});
}

void ReceiptWriter::work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return ends_ || !waiting_.empty(); });
    if (waiting_.empty()) {
      return;
    }
    Job job = std::move(waiting_.front());
    waiting_.pop_front();
    isWriting_ = true;
    const std::size_t weight = weightOf(job);
    lock.unlock();
    Done done = write(std::move(job));
    lock.lock();
    written_.push_back(std::move(done));
    weight_ -= weight;
    isWriting_ = false;
    changed_.notify_all();
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto told = ::write(done_, &one, sizeof one);
  }
}

ReceiptWriter::Done ReceiptWriter::write(Job job) {
  Done done;
  try {
    keep(job, job.apart ? piecesOf(job.paper) : std::vector{job.paper}, done);
  } catch (const std::exception& error) {
    done.complaints.push_back(std::string("a receipt could not be written: ") + error.what());
  }
  std::erase(done.complaints, "");
  done.record = std::move(job.paper.record());
  done.report = std::move(job.report);
  done.station = job.station;
  return done;
}

void ReceiptWriter::keep(Job& job, const std::vector<simulator::Paper>& papers, Done& done) {
  if (folder_ != nullptr && !job.paper.items().empty()) {
    auto written = folder_->add(papers);
    job.report.files = std::move(written.files);
    done.complaints.push_back(std::move(written.error));
  }
  done.line = inOneLine(inJson(job.report, job.paper.record())) + "\n";
  done.complaints.push_back(ReceiptFolder::addBeside(job.report.files, done.line));
  if (job.isLookedAt) {
    for (const simulator::Paper& paper : papers) {
      done.receipts.push_back(drawn(paper));
    }
  }
}

}  // namespace quordalvane::tool
