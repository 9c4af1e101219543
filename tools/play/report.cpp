#include "report.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <numeric>

namespace kestrin_play {
namespace {

constexpr int label_width = 36;
constexpr int value_width = 10;

void PrintRow(std::ostream& out, const std::string& label, std::vector<double> values, int decimals)
{
    if (values.empty())
        return;
    std::sort(values.begin(), values.end());
    const double mean =
        std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
    out << "  " << std::left << std::setw(label_width) << label << std::right << std::fixed
        << std::setprecision(decimals);
    for (const double value : {values.front(), values[values.size() / 2], mean, values.back()})
        out << std::setw(value_width) << value;
    out << '\n';
}

} // namespace

void Report::Skip(const Problem& problem)
{
    ++_skipped;
    std::cerr << Describe(_file, problem) << " (cue skipped)\n";
}

void Report::Warn(const Problem& problem)
{
    ++_warnings;
    std::cerr << Describe(_file, problem) << '\n';
}

void Statistics::Add(double microseconds, const Change& change)
{
    Add(microseconds);
    _pixels.push_back(change.pixels * 100);
    _boxes.push_back(change.box * 100);
}

void Statistics::Print(std::ostream& out) const
{
    if (_microseconds.empty())
        return;
    out << "  " << std::left << std::setw(label_width)
        << "frames after the first: " + std::to_string(_microseconds.size()) << std::right;
    for (const char* column : {"lowest", "median", "mean", "highest"})
        out << std::setw(value_width) << column;
    out << '\n';
    PrintRow(out, "dirty: pixels that changed, %", _pixels, 2);
    PrintRow(out, "dirty: smallest box around them, %", _boxes, 2);
    PrintRow(out, "time of an update, µs", _microseconds, 0);
}

} // namespace kestrin_play
