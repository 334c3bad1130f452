#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// What the HotSync Manager did and when, one line each: the file `HotSync.log` of its folder, UTF-8. Lines
/// are code page 1252 here.
class SessionLog {
public:
    /// A file that has grown to this becomes `HotSync.old.log`, in the place of the one before.
    static constexpr std::uint64_t FullAt = std::uint64_t{1} << 20;

    /// What is longer is cut.
    static constexpr std::size_t LongestLine = 1000;

    /// `folder` is the manager's, in the file system's encoding.
    explicit SessionLog(std::string_view folder);

    /// Adds a line with the date and time before it. Control characters become '?', so that nothing that a
    /// handheld says can look like a line of its own. A disk that does not take it is no failure: such lines
    /// are counted, and the next one that it takes comes behind one that says how many are missing.
    void Write(std::string_view line);

    /// The same about a caller that is no known user's handheld. Such lines are rationed, so that whoever can
    /// reach the port cannot push all others out of the log: a hundred stand at once, and further ones as
    /// minutes pass. What is left out is counted, and the next line comes behind one that says how many.
    void WriteOfStranger(std::string_view line);

    static constexpr int StrangersAtOnce = 100;
    static constexpr std::chrono::minutes PerFurtherStranger{1};

    /// The moment by which strangers are rationed.
    using Clock = std::chrono::steady_clock;
    Clock::time_point (*Moment)() = Clock::now;

    /// Up to so many of the last lines, the newest at the end. Never fails.
    std::vector<std::string> Last(std::size_t lines) const noexcept;

    /// Called with each line as it was written, whether the disk took it or not.
    std::function<void(const std::string& line)> Written;

private:
    void Append(std::string_view line) const;
    void WriteDated(std::string_view line);
    void TellLeftOut();
    bool TakeRation();

    std::string folder_;
    std::size_t missing_ = 0;
    std::size_t leftOut_ = 0;
    int ration_ = StrangersAtOnce; ///< lines about strangers that may still be written
    Clock::time_point filled_{};   ///< until when the ration has been filled up
};
