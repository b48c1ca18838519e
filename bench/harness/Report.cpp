#include "harness/Report.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace tavi::bench {
namespace {

std::string Number(const char* format, double number) {
  std::array<char, 64> text{};
  const int length = std::snprintf(text.data(), text.size(), format, number);
  return {text.data(), static_cast<std::size_t>(length)};
}

/// Three digits that count, with a unit; "-" for nothing.
std::string Time(double seconds) {
  if (seconds <= 0) return "-";
  if (seconds >= 1) return Number("%.3g s", seconds);
  if (seconds >= 1e-3) return Number("%.3g ms", seconds * 1e3);
  return Number("%.3g µs", seconds * 1e6);
}

/// Slope of the line of least squares through (log size, log time).
double Slope(const std::vector<double>& sizes, const std::vector<double>& times) {
  const auto count = static_cast<double>(sizes.size());
  double sumX = 0;
  double sumY = 0;
  double sumXX = 0;
  double sumXY = 0;
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    const double x = std::log(sizes[i]);
    const double y = std::log(times[i]);
    sumX += x;
    sumY += y;
    sumXX += x * x;
    sumXY += x * y;
  }
  return (count * sumXY - sumX * sumY) / (count * sumXX - sumX * sumX);
}

}  // namespace

std::string Heading() {
  return "| job | ours | SQLite | ratio | floor | call: p50 | p99 | worst | memory |\n"
         "|---|---:|---:|---:|---:|---:|---:|---:|---:|\n";
}

std::string Row(const Measured& measured) {
  const std::vector<double>& calls = measured.calls;
  const std::string ratio = measured.ratio > 0 ? Number("**%.2f**", measured.ratio) : "-";
  return "| " + measured.name + " | " + Time(measured.ours) + " | " + Time(measured.other) + " | " + ratio + " | " +
         Time(measured.floor) + " | " + Time(Percentile(calls, 0.5)) + " | " + Time(Percentile(calls, 0.99)) + " | " +
         Time(Percentile(calls, 1.0)) + " | " + Number("%.0f MiB", measured.memory / (1 << 20)) + " |\n";
}

std::string GrowthTable(const std::vector<double>& sizes, const std::vector<std::vector<Measured>>& measured) {
  std::string table = "| job |";
  for (const double size : sizes) table += Number(" %.4g |", size);
  table += " slope |\n|---|";
  for (std::size_t i = 0; i <= sizes.size(); ++i) table += "---:|";
  table += "\n";
  for (std::size_t job = 0; job < measured.front().size(); ++job) {
    std::vector<double> times;
    std::string row = "| " + measured.front()[job].name + " |";
    for (const std::vector<Measured>& atSize : measured) {
      times.push_back(atSize[job].ours);
      row += " " + Time(times.back()) + " |";
    }
    table += row + Number(" %.2f |\n", Slope(sizes, times));
  }
  return table;
}

}  // namespace tavi::bench
