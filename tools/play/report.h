/**
 * What the player tells its user: messages while it works, a table at the end.
 */
#pragma once

#include "picture.h"
#include "problem.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace kestrin_play {

/** Messages on standard error, counted. */
class Report
{
public:
    /** About one input file, whose name begins every message. */
    explicit Report(std::string file) : _file(std::move(file)) {}

    /** A cue was left out. */
    void Skip(const Problem& problem);
    /** Something is shown, but not as written. */
    void Warn(const Problem& problem);

    int Skipped() const { return _skipped; }
    int Warnings() const { return _warnings; }

private:
    const std::string _file;
    int _skipped = 0;
    int _warnings = 0;
};

/** What updating the screen cost. */
class Statistics
{
public:
    /** One update: its time, and what of the picture differs before and after. */
    void Add(double microseconds, const Change& change);
    /** One update where the picture cannot be seen. */
    void Add(double microseconds) { _microseconds.push_back(microseconds); }

    /** A table of the lowest, median, mean and highest values; nothing without updates. */
    void Print(std::ostream& out) const;

private:
    std::vector<double> _microseconds;
    std::vector<double> _pixels; ///< in per cent of the screen, as _boxes
    std::vector<double> _boxes;
};

} // namespace kestrin_play
