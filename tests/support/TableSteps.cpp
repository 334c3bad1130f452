#include "support/TableSteps.h"

#include "core/Globals.h"

void EmptyStepByStep(DBFEdit& table, const std::string& path) {
    table.FileOpen(path);
    table.Go(DBFEdit::First);
    for (std::int32_t k = 1; k <= table.RecordCount; ++k) {
        table.DeleteRecord();
        table.Go(DBFEdit::Next);
    }
    table.ReIndex(path);
}

void BeginAppending(DBFEdit& table) {
    table.Go(DBFEdit::Last);
    table.KillEOFFlag();
}

void AppendStepByStep(DBFEdit& table, const std::vector<std::string>& values) {
    table.Go(DBFEdit::Append);
    for (std::size_t k = 0; k < values.size(); ++k) {
        if (!values[k].empty()) table.WriteData(static_cast<int>(k) + 1, values[k]);
    }
    table.UpDate();
}

std::vector<std::string> TableTrace() {
    std::vector<std::string> lines;
    for (std::size_t k = TraceEntries; k-- > 0;) {
        const std::string& entry = Global.Events.Entry(k);
        if (entry.starts_with("DBFEdit:")) lines.push_back(entry);
    }
    Global.Events.Clear();
    return lines;
}
