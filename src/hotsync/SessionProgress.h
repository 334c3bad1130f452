#pragma once

#include <cstdint>
#include <string_view>

/// Whoever watches a HotSync session. Texts are code page 1252; what comes from a handheld may hold any
/// bytes. Everything is called on the thread of the one who watches.
struct SessionProgress {
    virtual ~SessionProgress() = default;

    /// A session has begun, with this HotSync user.
    virtual void Begun(std::string_view user) = 0;

    enum class Way { ToHandheld, FromHandheld };

    /// What moves, a table or a file by its name, where to, and how much of it has moved. `of` is 0 while
    /// nobody can say; `done` beyond `of` counts as `of`.
    virtual void Step(Way way, std::string_view what, std::int32_t done, std::int32_t of) = 0;

    /// The session has ended, in these words; well when all that was asked for was done.
    virtual void Ended(std::string_view how, bool well) = 0;

    /// Whether the operator wants the session to end. It stays so until the next session begins.
    virtual bool CancelAsked() = 0;
};
