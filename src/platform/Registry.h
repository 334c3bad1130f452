#pragma once

#include "sync/StatusStore.h"

#include <QList>
#include <QString>

#include <optional>
#include <string>
#include <string_view>

/// The machine's registry: the native one on Windows, elsewhere an INI file in the user's
/// configuration folder. Values below "ZUK Tramble PC" are kept by application directory, so that
/// two offices do not mix. Texts are code page 1252 but for paths.
class Registry final : public StatusStore {
public:
    /// A path below "Software\U.S. Robotics\Pilot Desktop\Core", such as "HotSyncPath", in the file
    /// system's encoding; nothing when there is none.
    static std::optional<std::string> HotSyncManagerValue(std::string_view name);

    /// Registers a HotSync Manager by the full path of its program: "HotSyncPath" is the program, "Path" its
    /// folder. False when the registry cannot be written.
    static bool SetHotSyncManager(std::string_view program);

    std::optional<std::string> Read(std::string_view section, std::string_view key) const override;
    void Replace(const std::vector<StatusEntry>& entries) override;

    /// Whether the operator has chosen the dark look for this office.
    static bool DarkLook();
    /// The same of the office in another application directory.
    static bool DarkLook(std::string_view appPath);
    static void SetDarkLook(bool dark);

    /// The language that the operator has chosen for the office in an application directory, by the name of
    /// its file; empty for the built-in one.
    static std::string Language(std::string_view appPath);
    /// Chooses one for this office. RunTimeFailure 75 when it cannot be kept.
    static void SetLanguage(const std::string& name);

    /// The widths of a grid's columns, in pixels, as the operator has drawn them; empty when there are
    /// none or they cannot be read.
    static QList<int> ColumnWidths(const QString& grid);
    static void SetColumnWidths(const QString& grid, const QList<int>& widths);

    /// What a window keeps of its place, as numbers of its own; empty when there are none or they cannot be
    /// read.
    static QList<int> WindowPlace(const QString& window);
    static void SetWindowPlace(const QString& window, const QList<int>& numbers);
};
