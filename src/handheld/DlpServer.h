#pragma once

#include "handheld/CurrentDatabase.h"
#include "handheld/Handheld.h"
#include "palm/Dlp.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a HotSync did to one database.
struct SyncActivity {
    std::string Name;
    std::size_t Read = 0;    ///< records or resources that were read
    std::size_t Written = 0; ///< records or resources that were written
    bool IsOpened = false;   ///< an existing one was opened
    bool IsMade = false;     ///< it is new, or took the place of another
    bool IsDeleted = false;
};

/// The handheld's side of a HotSync: answers a desktop's requests, as a handheld of Palm OS 4.1 with version
/// 1.2 of the protocol does. One object is one session.
///
/// One database is open at a time. What the desktop changes is kept as it comes: a database is written to
/// the folder when it is closed, made, renamed or deleted, and nothing is rolled back when the line breaks.
class DlpServer {
public:
    /// `handheld` outlives the server.
    explicit DlpServer(Handheld& handheld) : handheld_(handheld) {}

    /// The answer to any bytes; they need not be a request. Never fails: what goes wrong is the answer's
    /// error.
    std::string Answer(std::string_view request);

    /// From now on OpenConduit answers that the user has cancelled.
    void Cancel() { cancelled_ = true; }

    /// The line has gone, or the desktop: what is open is closed and kept, and then the end is written down,
    /// `words` cut where they are too many. Failures of the disk, behind both.
    void EndWithout(std::string_view words);

    /// How the desktop ended the session; nothing while it runs.
    std::optional<EndCode> Ended() const { return ended_; }
    bool IsRestartAsked() const { return restart_; }
    /// In the order in which the session came to them.
    const std::vector<SyncActivity>& Activities() const { return activities_; }

    /// As handhelds tell: the longest log of one session, with its NUL.
    static constexpr std::size_t LongestLog = 2048;

private:
    using Handler = DlpResponse (DlpServer::*)(const DlpRequest&);
    static Handler HandlerOf(DlpFunction function);
    DlpResponse Dispatch(std::string_view message);

    // The session and the system.
    DlpResponse ReadUserInfo(const DlpRequest& request);
    DlpResponse WriteUserInfo(const DlpRequest& request);
    DlpResponse ReadSysInfo(const DlpRequest& request);
    DlpResponse GetSysDateTime(const DlpRequest& request);
    DlpResponse SetSysDateTime(const DlpRequest& request);
    DlpResponse ReadStorageInfo(const DlpRequest& request);
    DlpResponse OpenConduit(const DlpRequest& request);
    DlpResponse AddSyncLogEntry(const DlpRequest& request);
    DlpResponse ResetSystem(const DlpRequest& request);
    DlpResponse EndOfSync(const DlpRequest& request);
    DlpResponse ReadNetSyncInfo(const DlpRequest& request);
    DlpResponse WriteNetSyncInfo(const DlpRequest& request);
    DlpResponse ReadFeature(const DlpRequest& request);

    // Databases.
    DlpResponse ReadDBList(const DlpRequest& request);
    DlpResponse OpenDB(const DlpRequest& request);
    DlpResponse CreateDB(const DlpRequest& request);
    DlpResponse CloseDB(const DlpRequest& request);
    DlpResponse DeleteDB(const DlpRequest& request);
    DlpResponse ReadOpenDBInfo(const DlpRequest& request);
    DlpResponse FindDB(const DlpRequest& request);
    DlpResponse SetDBInfo(const DlpRequest& request);
    DlpResponse ReadAppBlock(const DlpRequest& request);
    DlpResponse WriteAppBlock(const DlpRequest& request);
    DlpResponse ReadSortBlock(const DlpRequest& request);
    DlpResponse WriteSortBlock(const DlpRequest& request);

    // Records and resources.
    DlpResponse ReadNextModifiedRec(const DlpRequest& request);
    DlpResponse ReadRecord(const DlpRequest& request);
    DlpResponse WriteRecord(const DlpRequest& request);
    DlpResponse DeleteRecord(const DlpRequest& request);
    DlpResponse CleanUpDatabase(const DlpRequest& request);
    DlpResponse ResetSyncFlags(const DlpRequest& request);
    DlpResponse MoveCategory(const DlpRequest& request);
    DlpResponse ResetRecordIndex(const DlpRequest& request);
    DlpResponse ReadRecordIDList(const DlpRequest& request);
    DlpResponse ReadResource(const DlpRequest& request);
    DlpResponse WriteResource(const DlpRequest& request);
    DlpResponse DeleteResource(const DlpRequest& request);

    CurrentDatabase& Open(std::uint8_t handle);
    CurrentDatabase& OpenForWriting(std::uint8_t handle);
    CurrentDatabase& RecordsOf(std::uint8_t handle);
    CurrentDatabase& ResourcesOf(std::uint8_t handle);
    void CheckRoom(std::uint64_t more, std::uint64_t less = 0) const;
    std::uint64_t Used() const;
    DlpResponse OpenAs(DlpFunction function, Database database, std::uint8_t mode);
    void Keep();
    void Close();
    SyncActivity& ActivityOf(std::string_view name);
    void MoveActivity(std::string_view from, std::string_view to);
    const DatabaseHeader& HeaderOf(const DatabaseStore::Entry& entry) const;
    DatabaseInfo InfoOf(const DatabaseStore::Entry& entry, std::size_t index) const;
    DlpResponse Found(std::size_t entry, std::uint8_t options);
    std::string SizesOf(std::size_t entry, std::uint8_t options) const;
    DlpResponse ReadBlock(DlpFunction function, const DlpRequest& request, bool sort);
    DlpResponse WriteBlock(DlpFunction function, const DlpRequest& request, bool sort);
    DlpResponse RecordAt(DlpFunction function, std::size_t index, std::uint16_t offset, std::uint16_t count);
    bool IsHidden(const DatabaseRecord& record) const;

    Handheld& handheld_;
    std::optional<CurrentDatabase> open_;
    std::string storedName_; ///< of the open one in the store
    std::uint8_t handle_ = 0;
    std::uint8_t mode_ = 0;
    std::size_t cursor_ = 0; ///< of ReadNextModifiedRec
    std::size_t search_ = 0; ///< of FindDB by type and creator
    std::uint32_t wantedType_ = 0, wantedCreator_ = 0;
    std::string log_;
    bool hasLog_ = false;
    bool cancelled_ = false;
    bool restart_ = false;
    std::optional<EndCode> ended_;
    std::vector<SyncActivity> activities_;
};
