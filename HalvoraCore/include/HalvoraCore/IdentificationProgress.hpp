#pragma once

#include <HalvoraCore/PBPBehavior.hpp>

namespace HalvoraCore {

/// What the controller tells an identification about its monitor; the
/// identification moves its own step on.
class IdentificationProgress {
public:
    /// What became of a verdict.
    enum class Outcome {
        adopted,              ///< stored, and acted on where needed
        awaitingConfirmation, ///< stored; the split change it wrote waits for the user
        notWritten,           ///< stored, but the override it needs could not be written
    };

    virtual ~IdentificationProgress() = default;

    /// The display cannot be watched: gone, or its EDID unreadable.
    virtual void displayUnavailable() = 0;
    /// The monitor's behaviour was judged.
    virtual void judged(PBPBehavior verdict, Outcome outcome) = 0;
    /// The change awaiting confirmation was kept, or reverted.
    virtual void confirmationEnded(bool kept) = 0;
};

} // namespace HalvoraCore
