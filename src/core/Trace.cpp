#include "core/Trace.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/SafeFile.h"
#include "core/TextFile.h"

#include <exception>

const std::string& TraceRing::Entry(std::size_t index) const {
    return entries_[(newest_ + index) % TraceEntries];
}

void TraceRing::Push(std::string_view text) {
    newest_ = (newest_ + TraceEntries - 1) % TraceEntries;
    entries_[newest_] = OneLine(text);
}

void TraceRing::Clear() {
    entries_.fill({});
}

void TraceRing::Set(std::size_t index, std::string_view text) {
    entries_[(newest_ + index) % TraceEntries] = text;
}

void TraceEvent(std::string_view text) noexcept {
    try {
        Global.Events.Push(text);
        if (Global.AppPath.empty()) return;
        std::string content;
        for (std::size_t k = 0; k < TraceEntries; ++k) content.append(Global.Events.Entry(k)).append("\r\n");
        SafeFile log(Global.AppPath + "Events.log");
        log.Write(content);
        log.CommitQuickly();
    } catch (const std::exception&) { // a trace that cannot be written must not stop what it traces
    }
}

void LoadEvents() {
    Global.Events.Clear();
    try {
        TextReader file(Global.AppPath + "Events.log");
        std::string line;
        for (std::size_t k = 0; file.ReadLine(line); ++k) {
            if (k >= TraceEntries) throw RunTimeFailure(9, "Events.log");
            Global.Events.Set(k, line);
        }
    } catch (const RunTimeFailure& failure) {
        if (failure.Number() == 9) throw;
    }
}
