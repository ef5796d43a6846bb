#pragma once

#include <chrono>
#include <functional>
#include <type_traits>
#include <vector>

namespace quordalvane::bench {

inline constexpr int pairCount = 5;

using Figures = std::vector<double>;

/// Returns the value below which `share` of the figures lie: 0 means the lowest, 0.5 the median, 1
/// the highest.
double quantile(Figures figures, double share);
double median(Figures figures);
double lowest(const Figures& figures);
double highest(const Figures& figures);
double sum(const Figures& figures);

/// The results of our code (`ours`), and of other code for comparison (`limit`), for example a bare
/// link. Results with the same index are a pair; they were measured at nearly the same time.
template <typename Result>
struct Pairs {
  std::vector<Result> ours;
  std::vector<Result> limit;
};

/// Measures our code and the other code alternately. Each pair begins with the code that was
/// second in the previous pair, so that other work on the machine affects both alike.
template <typename Ours, typename Limit>
auto alternate(Ours measureOurs, Limit measureLimit) {
  Pairs<std::invoke_result_t<Ours>> pairs;
  for (int pair = 0; pair < pairCount; ++pair) {
    if (pair % 2 == 0) {
      pairs.ours.push_back(measureOurs());
      pairs.limit.push_back(measureLimit());
    } else {
      pairs.limit.push_back(measureLimit());
      pairs.ours.push_back(measureOurs());
    }
  }
  return pairs;
}

/// Returns one member of every result.
template <typename Result>
Figures figuresOf(const std::vector<Result>& results, double Result::*member) {
  Figures figures;
  for (const Result& result : results) {
    figures.push_back(result.*member);
  }
  return figures;
}

template <typename Result>
Pairs<double> figuresOf(const Pairs<Result>& pairs, double Result::*member) {
  return {.ours = figuresOf(pairs.ours, member), .limit = figuresOf(pairs.limit, member)};
}

/// Returns the duration of `body`, in seconds.
template <typename Body>
double secondsOf(Body body) {
  const auto start = std::chrono::steady_clock::now();
  body();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Returns the duration of each of `count` calls of `body`, in seconds.
template <typename Body>
Figures secondsOfEach(int count, Body body) {
  Figures seconds;
  seconds.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    seconds.push_back(secondsOf(body));
  }
  return seconds;
}

}  // namespace quordalvane::bench
