// KviRunObserver - who drives a run and wants to know of every record.
#pragma once

#include <cstdint>

namespace kv {

class Exception;

/// What has become of a record that was read.
enum TKvIFate {
    rfAdded,
    rfUpdated,
    rfDeleted,
    rfRefused,                                      ///< OnBeforeRecordEvent did not accept it.
    rfNotFound,                                     ///< No record of the destination has its keys.
    rfFailed,                                       ///< It could not be read, converted or stored.
    rfBrokenOff                                     ///< The run was cancelled while it was being handled.
};

/// Told of a run as it goes on; during each call the component tells where the record stands in the source.
/// An exception that leaves one of these functions ends the run as any other does.
class TKvIRunObserver
{
public:
    virtual ~TKvIRunObserver() = default;

    /// Asked while the source loads, before each record, and while the destination is emptied. False ends the
    /// run as cancelled.
    virtual bool KeepsRunning() { return true; }
    /// The source is loaded, nothing of the destination has been changed yet.
    virtual void SourceOpened() {}
    /// `Count` records of the destination were removed to make room for those of the source.
    virtual void Emptied(std::int64_t Count) { static_cast<void>(Count); }
    /// A record that was read is done: each is told once, here or as failed.
    virtual void RecordDone(TKvIFate Fate) { static_cast<void>(Fate); }
    /// A record that was read has failed. False ends the run as failed with this error.
    virtual bool RecordFailed(const Exception& Error)
    {
        static_cast<void>(Error);
        return true;
    }
};

} // namespace kv
