#include "job/Advice.h"

namespace quordalvane {

std::string adviceFor(const PrintResult& result) {
  switch (result.outcome) {
    case PrintOutcome::Printed:
      return "";
    case PrintOutcome::Refused:
      return "nothing of the job was sent; sending it again is safe";
    case PrintOutcome::Unconfirmed:
      break;
  }
  if (result.obstacle == PrintObstacle::PrinterNotReady) {
    return "the printer keeps its data and continues when it is ready again; look at the "
           "paper before sending the job again, so that it is not printed twice";
  }
  return "look at the paper before sending the job again, so that it is not printed twice";
}

}  // namespace quordalvane
