// Writes a generated sheet for bench/whole_process.sh. Columns: X, a skewed
// weight to one decimal (values repeat, so the dot diagram's stacks grow
// tall); time, a survival time to one decimal, exponential with a mean per
// group; censored, 1 for a censored time (about a quarter); group, one of
// four names. Seeded: every run writes the same sheet.
// Usage: make_sheet ROWS FILE
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <random>
#include <string>

int main(int argc, char** argv) {
  long rows = 0;
  if (argc != 3 ||
      std::from_chars(argv[1], argv[1] + std::strlen(argv[1]), rows).ec != std::errc() ||
      rows < 1 || rows > 100000000) {
    std::cerr << "usage: make_sheet ROWS FILE (ROWS from 1 to 1e8)\n";
    return 2;
  }
  std::ofstream out(argv[2]);
  std::mt19937_64 random(2842);
  std::lognormal_distribution<double> weight(5.15, 0.17);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  const char* groups[] = {"A", "B", "C", "D"};
  const double mean[] = {10.0, 12.0, 15.0, 9.0};
  out << "X,time,censored,group\n";
  char line[96];
  for (long i = 0; i < rows; ++i) {
    const double x = std::round(weight(random) * 10.0) / 10.0;
    const int g = static_cast<int>(random() % 4);
    const double t = std::max(0.1, std::round(-mean[g] * std::log1p(-unit(random)) * 10.0) / 10.0);
    const int censored = unit(random) < 0.25 ? 1 : 0;
    std::snprintf(line, sizeof line, "%.1f,%.1f,%d,%s\n", x, t, censored, groups[g]);
    out << line;
  }
  out.close();
  if (!out) {
    std::cerr << "make_sheet: cannot write " << argv[2] << "\n";
    return 1;
  }
  return 0;
}
