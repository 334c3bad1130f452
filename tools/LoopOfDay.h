#pragma once

#include <QString>

#include <functional>
#include <optional>

/// The whole loop of a day with two handhelds over the real programs, in a fresh office at `office`: import,
/// check, download, orders, upload, merge, export, clearing of the handhelds and of the PC. Says each step
/// and the totals on both sides. Fails with an exception at the first thing that does not hold.
/// With a seed three sessions of the upload break, by the line, the handheld or the HotSync Manager, and the
/// program, and each order must be on the PC once all the same.
/// `build` is a build's folder; `samples` has customers.csv and items.txt.
void RunLoopOfDay(const QString& build, const QString& office, const QString& samples,
                  std::optional<unsigned> seed, const std::function<void(const QString& line)>& say);
