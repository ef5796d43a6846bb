#pragma once

#include <list>
#include <optional>
#include <string>

#include "tools/http/Server.h"
#include "tools/quorport/Json.h"
#include "tools/quorport/simulate/Control.h"
#include "tools/quorport/simulate/Station.h"
#include "tools/quorport/web/LivePaper.h"

namespace quordalvane::tool {

/// Shows one printer to browsers.
class PrinterShow {
 public:
  /// `number` counts from 1. `station` and `control` must outlive this object.
  PrinterShow(unsigned number, Station& station, const Control& control)
      : number_(number), station_(station), control_(control) {}

  unsigned number() const { return number_; }
  Station& station() const { return station_; }
  LivePaper& paper() { return paper_; }

  /// Returns all facts about the printer, except the picture of its paper.
  Json describe() const;

  /// Returns the facts that can change, as one line of JSON; empty if none has changed since the
  /// last call.
  std::optional<std::string> change();

 private:
  Json changing() const;

  const unsigned number_;
  Station& station_;
  const Control& control_;
  LivePaper paper_;
  std::string shown_;
};

}  // namespace quordalvane::tool
