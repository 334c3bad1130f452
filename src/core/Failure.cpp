#include "core/Failure.h"

namespace {

std::string Sentence(int number, const std::string& detail) {
    std::string text = RunTimeFailure::Words(number);
    if (!detail.empty()) text += ": " + detail;
    return text;
}

} // namespace

RunTimeFailure::RunTimeFailure(int number, const std::string& detail)
    : std::runtime_error(Sentence(number, detail)),
      number_(number) {}

const char* RunTimeFailure::Words(int number) {
    switch (number) {
    case 5:
        return "Invalid procedure call";
    case 6:
        return "Overflow";
    case 9:
        return "Subscript out of range";
    case 13:
        return "Type mismatch";
    case 52:
        return "Bad file name or number";
    case 53:
        return "File not found";
    case 55:
        return "File already open";
    case 57:
        return "Device I/O error";
    case 61:
        return "Disk full";
    case 62:
        return "Input past end of file";
    case 63:
        return "Bad record number";
    case 70:
        return "Permission denied";
    case 75:
        return "Path/File access error";
    case 76:
        return "Path not found";
    case 321:
        return "Invalid file format";
    default:
        return "Application-defined or object-defined error";
    }
}
