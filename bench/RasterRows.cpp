// The rendering of a long raster page for the printer, compared with only reading and writing the
// page. Each side runs in a process of its own, so that neither uses memory that the other has
// freed.

#include <cups/raster.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <ctime>
#include <fstream>
#include <functional>
#include <random>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bench/Groups.h"
#include "bench/Measure.h"
#include "render/RasterPage.h"

namespace quordalvane::bench {
namespace {

constexpr unsigned width = 576;
constexpr unsigned height = 20'000;

using Bytes = std::vector<std::uint8_t>;

/// A file in memory.
class MemoryFile {
 public:
  MemoryFile() : descriptor_(::memfd_create("raster", MFD_CLOEXEC)) {
    if (descriptor_ < 0) {
      throw std::runtime_error("no file can be made in memory");
    }
  }
  ~MemoryFile() { ::close(descriptor_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  int rewound() const {
    ::lseek(descriptor_, 0, SEEK_SET);
    return descriptor_;
  }

 private:
  const int descriptor_;
};

class Raster {
 public:
  Raster(int descriptor, cups_mode_t mode) : handle_(cupsRasterOpen(descriptor, mode)) {}
  ~Raster() { cupsRasterClose(handle_); }
  Raster(const Raster&) = delete;
  Raster& operator=(const Raster&) = delete;

  cups_raster_t* operator*() const { return handle_; }

 private:
  cups_raster_t* const handle_;
};

// Writes a page with as much ink as a receipt of text: strokes of 2 dots with a grey edge, in lines
// of 30 rows.
void writePage(int descriptor) {
  const Raster raster(descriptor, CUPS_RASTER_WRITE_PWG);
  cups_page_header2_t header{};
  cupsRasterInitPWGHeader(&header, pwgMediaForSize(8000, 250'000), "sgray_8", 203, 203, "one-sided",
                          nullptr);
  header.cupsWidth = width;
  header.cupsHeight = height;
  header.cupsBytesPerLine = width;
  cupsRasterWriteHeader2(*raster, &header);
  std::mt19937 random(1);
  for (unsigned y = 0; y < height; ++y) {
    Bytes row(width, 255);
    for (unsigned x = 0; y % 30 < 24 && x + 8 <= width; x += 8) {
      if (random() % 3 == 0) {
        const std::size_t at = x + random() % 5;
        row[at] = row[at + 1] = 0;
        row[at + 2] = 160;
      }
    }
    cupsRasterWritePixels(*raster, row.data(), width);
  }
}

void write(int descriptor, std::span<const std::uint8_t> bytes) {
  if (::write(descriptor, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
    throw std::runtime_error("the page cannot be written");
  }
}

void printPage(int from, int to) {
  const Raster raster(from, CUPS_RASTER_READ);
  cups_page_header2_t header{};
  cupsRasterReadHeader2(*raster, &header);
  Bytes job;
  job.reserve(render::RasterPage::mostBytes(header.cupsHeight, width));
  render::RasterPage page(header.cupsWidth, width, [&job](render::ByteView bytes) {
    job.insert(job.end(), bytes.begin(), bytes.end());
  });
  Bytes row(header.cupsBytesPerLine);
  for (unsigned y = 0; y < header.cupsHeight; ++y) {
    cupsRasterReadPixels(*raster, row.data(), width);
    page.add(row);
  }
  page.end();
  write(to, job);
}

void copyPage(int from, int to) {
  const Raster raster(from, CUPS_RASTER_READ);
  cups_page_header2_t header{};
  cupsRasterReadHeader2(*raster, &header);
  Bytes rows(std::size_t{header.cupsHeight} * header.cupsBytesPerLine);
  for (unsigned y = 0; y < header.cupsHeight; ++y) {
    cupsRasterReadPixels(*raster, rows.data() + std::size_t{y} * width, width);
  }
  write(to, rows);
}

struct Cost {
  double seconds = 0;
  double bytes = 0;
};

double processorSeconds() {
  timespec time{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// Returns the value with this name in /proc/self/status, in bytes.
double memory(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word == name + ":") {
      double kibibytes = 0;
      status >> kibibytes;
      return kibibytes * 1024;
    }
  }
  throw std::runtime_error("the system does not tell " + name);
}

Cost costOf(const std::function<void()>& body) {
  std::ofstream("/proc/self/clear_refs") << "5";  // resets the highest memory use
  const double before = memory("VmRSS");
  const double began = processorSeconds();
  body();
  return {.seconds = processorSeconds() - began, .bytes = memory("VmHWM") - before};
}

// Measures the cost in a process of its own.
Cost costApart(const std::function<void()>& body) {
  int ends[2];
  if (::pipe(ends) != 0) {
    throw std::runtime_error("no pipe can be made");
  }
  const pid_t child = ::fork();
  if (child == 0) {
    const Cost cost = costOf(body);
    ::_exit(::write(ends[1], &cost, sizeof cost) == sizeof cost ? 0 : 1);
  }
  ::close(ends[1]);
  Cost cost;
  const bool isWhole = ::read(ends[0], &cost, sizeof cost) == sizeof cost;
  ::close(ends[0]);
  ::waitpid(child, nullptr, 0);
  if (!isWhole) {
    throw std::runtime_error("the page was not measured");
  }
  return cost;
}

Cost costOn(const MemoryFile& page, void (*body)(int, int)) {
  const MemoryFile out;
  return costApart([&] { body(page.rewound(), out.rewound()); });
}

}  // namespace

Rows longPage() {
  const MemoryFile page;
  writePage(page.rewound());
  const auto pairs =
      alternate([&] { return costOn(page, printPage); }, [&] { return costOn(page, copyPage); });
  return {comparedRow({"B21", "a page of 576 by 20,000 dots: processor time", "<= 1.5 x", "ms"},
                      figuresOf(pairs, &Cost::seconds), Best::Lowest, 1e3),
          comparedRow({"B21", "memory at its peak, beyond the program", "<= 1.5 x", "MiB"},
                      figuresOf(pairs, &Cost::bytes), Best::Lowest, 1.0 / (1 << 20))};
}

}  // namespace quordalvane::bench
