#include "tools/SystemInformation.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/SafeFile.h"
#include "core/TextFile.h"

namespace {

constexpr std::size_t ValueColumn = 30;
constexpr std::string_view LineEnd = "\r\n";

Text LineOf(MessageId label, const Text& value) {
    const Text words = label;
    const std::size_t length = words.CodePage().size();
    if (length >= ValueColumn) throw RunTimeFailure(5, words.Utf8());
    const std::string rest = std::string(ValueColumn - length, ' ') + OneLine(value.Utf8());
    return words + Text::Path(std::string_view(rest));
}

Text PathOf(const std::string& path) {
    return Text::Path(std::string_view(path));
}

} // namespace

std::vector<Text> SystemInformation(const MachineFacts& facts) {
    return {LineOf(msg::lblZUKVer, facts.ZUKVersion),
            LineOf(msg::lblOSName, facts.OSName),
            LineOf(msg::lblOSVer, facts.OSVersion),
            LineOf(msg::lblPalmDTVer, facts.PalmDesktopVersion),
            LineOf(msg::lblHotsyncVer, facts.HotsyncVersion),
            LineOf(msg::lblAppPath, PathOf(Global.AppPath)),
            LineOf(msg::lblDBFPath, PathOf(Global.DBFPath)),
            LineOf(msg::lblDataInPath, PathOf(Global.DataInPath)),
            LineOf(msg::lblDataOutPath, PathOf(Global.DataOutPath))};
}

std::string WriteSysInfo(const MachineFacts& facts) {
    std::string content;
    for (const Text& line : SystemInformation(facts)) (content += line.Utf8()) += LineEnd;
    std::string path = Global.AppPath + "SysInfo.txt";
    WriteWholeFile(path, content);
    return path;
}

std::string MailBody(const std::vector<Text>& lines) {
    std::string body;
    for (const Text& line : lines) (body += line.CodePage()) += LineEnd;
    return body;
}

std::string SystemInformationMail(const MachineFacts& facts) {
    return MailBody({msg::SysInfoMailTitle}) + MailBody(SystemInformation(facts));
}
