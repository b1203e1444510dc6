/// @file
/// All that one side of a call offers or accepts: its media lines, the media text that is passed
/// through unparsed, and the flags of the session (RFC 3264).
///
/// A QOVA_Capability owns its media. The order of the data members is ABI; the class has no virtual
/// functions.
///
/// Whatever allocates throws std::bad_alloc when memory runs out, and leaks nothing; nothing else
/// throws. Searches and edits allocate nothing unless they say so; everything is linear in what it
/// looks at. What a search returns is borrowed: it stays valid until
/// #QOVA_Capability::filteredMedia changes.

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
    /// The first ports of the local plan, from which setPublicAddrPort() and setLocalAddrPort()
    /// measure.
    enum : unsigned short {
        AUDIO_PORT_BASE = 32000,  ///< First local audio port.
        FAX_PORT_BASE = 6666      ///< First local fax port.
    };

    /// The media that the stack understood, in the order of their lines, owned; never null.
    std::list<QOVA_Media*> filteredMedia;

    /// A mark for the owner's use; the log text shows it as an apostrophe. Never compared.
    bool marked = false;

    /// True: an offer; false: an answer (RFC 3264).
    bool offer = false;

    /// Media text that is carried through unparsed; any bytes.
    std::string passThrough;

    /// The call is on hold (RFC 3264, section 8.4).
    bool hold = false;

    unsigned char spare1 = 0;  ///< The owner's; copied, never compared or printed.
    unsigned char spare2 = 0;  ///< @copydoc spare1
    unsigned char spare3 = 0;  ///< @copydoc spare1

    /// Silence suppression is signalled in SDP (`a=silenceSupp`, RFC 3108).
    bool silenceSuppSdp = false;

    /// An empty capability with the defaults that stand beside the members. Allocates nothing.
    QOVA_Capability() = default;

    /// A deep copy. Each media is copied through its virtual `clone`, so an object of a class
    /// derived from QOVA_Media keeps its class. One allocation for each owned object and each list
    /// node, and one for a long #passThrough.
    /// @param other the source
    QOVA_Capability(const QOVA_Capability& other);

    /// Frees every media, in list order, through its virtual destructor.
    ~QOVA_Capability();

    /// Frees the media of this capability, then copies every member of the other. Each media is
    /// copied by QOVA_Media's copy constructor: the copies are plain QOVA_Media, whatever the class
    /// of their source.
    ///
    /// **Assigning a capability to itself empties #filteredMedia** and keeps the rest: there is no
    /// guard, and the list that is freed first is the one that would be copied. It stays so because
    /// built programs can see it.
    ///
    /// After a failure this capability holds only part of the media, or, where #passThrough could
    /// not be copied, none, and the old #passThrough, #spare2 and #spare3; all other members are
    /// new. It can be destroyed and assigned again.
    /// @param other the source
    /// @return this capability
    QOVA_Capability& operator=(const QOVA_Capability& other);

    /// Whether two capabilities say the same, by rules that are partial on purpose:
    /// - #offer, #hold and #silenceSuppSdp must agree;
    /// - if either #passThrough is not empty, those two texts alone decide, and **no media is
    ///   looked at**;
    /// - otherwise the media must be as many, and equal pair by pair by QOVA_Media::operator==. As
    ///   that compares parameter objects by identity, **a capability that has media does not equal
    ///   its copy**.
    ///
    /// #marked and the spare members are never compared. Allocates nothing but address texts.
    /// @param other the capability to compare with
    /// @return whether no compared member differs
    bool operator==(const QOVA_Capability& other) const;

    /// All media of the given kind and status, in list order. One allocation for each.
    /// @param type the kind to look for
    /// @param status the status to look for; QOVA_Media::MS_UNKNOWN matches any
    /// @return the media; empty when there are none
    std::list<QOVA_Media*> find(QOVA_Media::e_MediaType type,
                                QOVA_Media::e_MediaStatus status) const;

    /// The first audio media that has an attribute with the given codec.
    /// @param codec the codec, or dynamic payload type, to look for
    /// @return the media (not the attribute), or null
    QOVA_Media* find(QOVA_Codec codec) const;

    /// The first fax media that has an attribute with the given transport.
    /// @param transport the transport to look for
    /// @return the media (not the attribute), or null
    QOVA_Media* find(QOVA_FaxTransport transport) const;

    /// The first attribute of an audio media whose tone events are carried by the given payload.
    /// @param codec the payload of the tone events
    /// @return the attribute (not the media), or null
    QOVA_AudioAttribute* find_mf(QOVA_Codec codec) const;

    /// Whether at least one audio media is mute (QOVA_Media::isMute). Other kinds play no part.
    /// @return false also when there is no audio media
    bool isMute() const;

    /// Sets QOVA_Media::rcvPort and QOVA_Media::sndPort of the first media of the given kind to 0.
    /// Its status, its second ports and every other media stay as they are.
    /// @param type the kind to reject
    void rejectMedia(QOVA_Media::e_MediaType type);

    /// Clears QOVA_Media::bsnd and QOVA_Media::brcv of every audio media; nothing else changes.
    void ClearMediaDirection();

    /// Moves every media that is not rejected from the local plan to a public one. Each gets a copy
    /// of the new address. The four ports of an audio media shift by `audioPort` -
    /// #AUDIO_PORT_BASE, those of a fax media by `faxPort` - #FAX_PORT_BASE; other kinds keep their
    /// ports.
    ///
    /// **The shift is not guarded**: ports are computed modulo 65536, and a port 0 is shifted like
    /// any other. What a move does, the reverse move with the same bases undoes exactly.
    ///
    /// A rejected media keeps its address and its ports. Allocates the new addresses only. After a
    /// failure the media at which it stopped has no address: assign the capability again, or
    /// destroy it.
    /// @param addr the new address; its port is not used
    /// @param audioPort the port onto which local port #AUDIO_PORT_BASE moves
    /// @param faxPort the port onto which local port #FAX_PORT_BASE moves
    void setPublicAddrPort(const UDPAddr& addr, unsigned short audioPort, unsigned short faxPort);

    /// The reverse of setPublicAddrPort(): moves back to the local plan. Audio ports shift by
    /// #AUDIO_PORT_BASE - `audioPort`, fax ports by #FAX_PORT_BASE - `faxPort`; all else is the
    /// same.
    /// @param addr the new address; its port is not used
    /// @param audioPort the port that moves onto local port #AUDIO_PORT_BASE
    /// @param faxPort the port that moves onto local port #FAX_PORT_BASE
    void setLocalAddrPort(const UDPAddr& addr, unsigned short audioPort, unsigned short faxPort);

    /// The log text: a summary of the flags, the media's texts, and #passThrough whole. It holds no
    /// key material unless #passThrough does.
    ///
    /// Every compiler takes `const std::string text = capability;` and
    /// `static_cast<const std::string&>(capability)`. Clang takes no assignment to an existing
    /// string and, before C++17, no cast to `std::string`, because the result is const.
    /// @return the text
    operator const std::string() const;
};

#endif
