/// @file
/// Everything that one side of a call offers or accepts: its media lines, media text that is passed
/// through unparsed, and the flags of the session (RFC 3264).
///
/// A QOVA_Capability owns its media. The order of the data members is ABI; the class has no virtual
/// functions.
///
/// Operations that allocate throw std::bad_alloc when memory runs out, and leak nothing. Nothing
/// else throws. Searches and edits do not allocate unless they say so. Every operation takes time
/// linear in the elements that it visits. Searches return borrowed pointers: a media stays valid
/// until #QOVA_Capability::filteredMedia changes, an attribute until its media's list changes.

#ifndef QOVA_CAPABILITY_H
#define QOVA_CAPABILITY_H

#include <list>
#include <string>

#include "qova/enumerations.h"
#include "qova/export.h"
#include "qova/media.h"

class UDPAddr;

/// The media capability of one side of a call: what a session description offers or answers
/// (RFC 3264).
class QOVA_API QOVA_Capability {
public:
    /// The first ports of the local plan, for setPublicAddrPort() and setLocalAddrPort().
    enum : unsigned short {
        AUDIO_PORT_BASE = 32000,  ///< First local audio port.
        FAX_PORT_BASE = 6666      ///< First local fax port.
    };

    /// The media that the stack understood, in the order of their lines; owned, never null.
    std::list<QOVA_Media*> filteredMedia;

    /// A mark for the owner's use; the log text shows it as an apostrophe. Never compared.
    bool marked = false;

    /// True for an offer, false for an answer (RFC 3264).
    bool offer = false;

    /// Media text that is passed through unparsed; any bytes.
    std::string passThrough;

    /// The call is on hold (RFC 3264, section 8.4).
    bool hold = false;

    unsigned char spare1 = 0;  ///< For the owner's use. Copied, never compared or printed.
    unsigned char spare2 = 0;  ///< @copydoc spare1
    unsigned char spare3 = 0;  ///< @copydoc spare1

    /// SDP signals silence suppression (`a=silenceSupp`, RFC 3108).
    bool silenceSuppSdp = false;

    /// Makes an empty capability with the default member initialisers. Does not allocate.
    QOVA_Capability() = default;

    /// Makes a deep copy. Each media is copied through its virtual `clone`, so an object of a class
    /// derived from QOVA_Media keeps its class. One allocation for each owned object and each list
    /// node, and one for a long #passThrough.
    /// @param other the source
    QOVA_Capability(const QOVA_Capability& other);

    /// Frees every media, in list order, through its virtual destructor.
    ~QOVA_Capability();

    /// Frees the media of this capability, then copies every member of `other`. Each media is
    /// copied by QOVA_Media's copy constructor, so the copies are plain QOVA_Media, whatever the
    /// class of the source.
    ///
    /// **Self-assignment empties #filteredMedia** and keeps everything else: the list that is freed
    /// first is also the list to copy. This is kept because existing programs can observe it.
    ///
    /// If memory runs out, this capability holds only some of the media. If #passThrough could not
    /// be copied, it holds no media and keeps its old #passThrough, #spare2 and #spare3. All other
    /// members are new. The capability can be destroyed or assigned again.
    /// @param other the source
    /// @return this capability
    QOVA_Capability& operator=(const QOVA_Capability& other);

    /// Compares two capabilities. The comparison is deliberately partial:
    /// - #offer, #hold and #silenceSuppSdp must be equal;
    /// - if either #passThrough is not empty, these two texts alone decide, and **the media are not
    ///   compared**;
    /// - otherwise both must have the same number of media, equal pair by pair by
    ///   QOVA_Media::operator==. Because that operator compares parameter objects by identity, **a
    ///   capability that has media and no #passThrough does not equal its copy**.
    ///
    /// Ignores #marked and the spare members. Allocates only address texts.
    /// @param other the capability to compare with
    /// @return true if no compared member differs
    bool operator==(const QOVA_Capability& other) const;

    /// Finds all media of the given kind and status, in list order. One allocation for each.
    /// @param type the kind to look for
    /// @param status the status to look for; QOVA_Media::MS_UNKNOWN matches any
    /// @return the media; empty if there are none
    std::list<QOVA_Media*> find(QOVA_Media::e_MediaType type,
                                QOVA_Media::e_MediaStatus status) const;

    /// Finds the first audio media that has an attribute with the given codec.
    /// @param codec the codec, or dynamic payload type, to look for
    /// @return the media (not the attribute), or null
    QOVA_Media* find(QOVA_Codec codec) const;

    /// Finds the first fax media that has an attribute with the given transport.
    /// @param transport the transport to look for
    /// @return the media (not the attribute), or null
    QOVA_Media* find(QOVA_FaxTransport transport) const;

    /// Finds the first attribute of an audio media whose tone events use the given payload.
    /// @param codec the payload of the tone events
    /// @return the attribute (not the media), or null
    QOVA_AudioAttribute* find_mf(QOVA_Codec codec) const;

    /// Returns true if at least one audio media is mute (QOVA_Media::isMute). Ignores other kinds.
    /// @return true if an audio media is mute; false if there is no audio media
    bool isMute() const;

    /// Sets QOVA_Media::rcvPort and QOVA_Media::sndPort of the first media of the given kind to 0.
    /// Its status, its second ports and all other media stay unchanged.
    /// @param type the kind to reject
    void rejectMedia(QOVA_Media::e_MediaType type);

    /// Clears QOVA_Media::bsnd and QOVA_Media::brcv of every audio media. Changes nothing else.
    void ClearMediaDirection();

    /// Moves every media that is not rejected from the local plan to a public one. Each gets a copy
    /// of the new address. The four ports of an audio media shift by `audioPort` -
    /// #AUDIO_PORT_BASE, the four ports of a fax media by `faxPort` - #FAX_PORT_BASE. Other kinds
    /// keep their ports.
    ///
    /// **The shift is not range-checked**: ports are computed modulo 65536, and port 0 is shifted
    /// like any other. setLocalAddrPort() with the same bases restores the ports exactly.
    ///
    /// A rejected media keeps its address and its ports. Allocates only the new addresses. If
    /// memory runs out, one media is left without an address: assign the capability again or
    /// destroy it.
    /// @param addr the new address; its port is not used
    /// @param audioPort the public port for local port #AUDIO_PORT_BASE
    /// @param faxPort the public port for local port #FAX_PORT_BASE
    void setPublicAddrPort(const UDPAddr& addr, unsigned short audioPort, unsigned short faxPort);

    /// The reverse of setPublicAddrPort(): moves the media back to the local plan. Audio ports
    /// shift by #AUDIO_PORT_BASE - `audioPort`, fax ports by #FAX_PORT_BASE - `faxPort`; everything
    /// else is the same.
    /// @param addr the new address; its port is not used
    /// @param audioPort the public port for local port #AUDIO_PORT_BASE
    /// @param faxPort the public port for local port #FAX_PORT_BASE
    void setLocalAddrPort(const UDPAddr& addr, unsigned short audioPort, unsigned short faxPort);

    /// Returns the log text: a summary of the flags, the texts of the media, and all of
    /// #passThrough. It contains no key material unless #passThrough does.
    ///
    /// `const std::string text = capability;` and `static_cast<const std::string&>(capability)`
    /// compile everywhere. Because the result is const, Clang rejects an assignment to an existing
    /// string and, before C++17, a cast to `std::string`.
    /// @return the text
    operator const std::string() const;
};

#endif
