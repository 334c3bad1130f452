#pragma once

#include <string>

/// Where whoever runs the system can be reached, as the one who has set it up has written it into
/// `Support.ini` of the application directory (docs/files.md). Both may be empty.
struct SupportDesk {
    std::string Address; ///< to which mail goes; several are parted by commas
    std::string Web;     ///< of a page, with "http://" or "https://"
};

/// Without a file both are empty. RunTimeFailure 13, naming file, line and reason, for what is no address,
/// and as TextReader.
SupportDesk ReadSupportDesk();
