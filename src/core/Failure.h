#pragma once

#include <stdexcept>
#include <string>

/// A run-time failure with its classic number and words.
///
/// Numbers in use: 5 invalid procedure call, 6 overflow, 9 subscript out of range, 13 type
/// mismatch, 52 bad file name or number, 53 file not found, 55 file already open, 57 device
/// input or output error, 61 disk full, 62 input past end of file, 63 bad record number,
/// 70 permission denied, 75 path/file access error, 76 path not found, 321 invalid file format.
/// `what()` is UTF-8 and names the file, where there is one, behind the classic words.
class RunTimeFailure : public std::runtime_error {
public:
    /// `detail` (UTF-8) says what was being used: a path, a line, a value. It may be empty.
    explicit RunTimeFailure(int number, const std::string& detail = {});

    int Number() const { return number_; }

    /// The classic words of a number, such as "File not found". "Application-defined or
    /// object-defined error" for a number that is not listed above.
    static const char* Words(int number);

private:
    int number_;
};
