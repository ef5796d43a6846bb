#include "job/PrintResult.h"

namespace quordalvane {

std::string_view nameOf(PrintOutcome outcome) {
  switch (outcome) {
    case PrintOutcome::Printed:
      return "printed";
    case PrintOutcome::Unconfirmed:
      return "unconfirmed";
    case PrintOutcome::Refused:
      break;
  }
  return "refused";
}

}  // namespace quordalvane
