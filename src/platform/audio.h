#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

/// The host's audio as a looping ring of bytes, 16-bit mono. It comes up in steps, each of which
/// can fail on its own.
struct Audio {
    virtual ~Audio() = default;
    virtual bool library_available() = 0; ///< is there an audio system at all?
    /// Why the latest step has failed, in the audio system's words; empty when it does not say.
    virtual std::string error() = 0;
    virtual bool create_device() = 0;   ///< open the default device
    virtual bool set_cooperative() = 0; ///< exclusive use for the main window
    virtual bool create_primary() = 0;  ///< the device's own buffer
    /// 16-bit mono; the device should take its data in blocks of so many samples.
    virtual bool set_format(int rate, int block) = 0;
    /// Bytes that the device takes at a time; 0 without a device, and for one that only keeps
    /// silent time.
    virtual uint32_t block_bytes() = 0;
    /// A silent ring that does not play yet; `rate` in samples per second.
    virtual bool create_ring(uint32_t bytes, int rate) = 0;
    virtual bool has_ring() = 0;
    /// The byte range as one or two regions, the second one where the range wraps. False when the
    /// device is lost.
    virtual bool lock(uint32_t offset, uint32_t bytes, std::span<uint8_t>& first,
                      std::span<uint8_t>& second) = 0;
    virtual bool unlock() = 0; ///< the regions are no longer the caller's
    virtual bool play() = 0;   ///< looping; nothing happens while it plays
    virtual void stop() = 0;
    /// Byte offset up to which the device has taken data, or -1 without a ring or device.
    virtual int32_t position() = 0;
    /// Lets the device go on at another offset.
    virtual void seek(uint32_t offset) = 0;
    /// How often the device has run past the end of what was written last.
    virtual uint32_t underruns() = 0;
    virtual void restore() = 0; ///< after a loss
    virtual void release_ring() = 0;
    virtual void release_device() = 0;
};
