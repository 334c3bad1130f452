#pragma once

#include "palm/Bytes.h"
#include "palm/Dlp.h"

#include <string_view>

/// A request that the handheld's answer refuses. Only between a handler and DlpServer::Answer.
struct DlpRefused {
    DlpError Error;
};

/// The data of an argument. DlpRefused when there is none.
inline std::string_view RequiredArgument(const DlpRequest& request, std::uint8_t id = 0x20) {
    const DlpArgument* const argument = request.Find(id);
    if (!argument) throw DlpRefused{DlpError::ArgumentMissing};
    return argument->Data;
}

/// Reads an argument from its front; one that is too short is a PalmFailure, which is answered as such.
inline ByteReader Reading(const DlpRequest& request, std::uint8_t id = 0x20) {
    return {RequiredArgument(request, id), "argument"};
}

/// The handheld has one card, number 0.
inline void CheckCard(std::uint8_t card) {
    if (card != 0) throw DlpRefused{DlpError::Parameter};
}
