/// @file
/// One media line of a session description (RFC 4566, section 5.14) as negotiated: its kind,
/// outcome, address, ports, directions, payload attributes, codec parameters and SRTP crypto lines.
///
/// A QOVA_Media owns all that its pointers and lists point to; nothing is shared between two media,
/// and every copy makes objects of its own. The order of the data members and of the virtual
/// functions is ABI.
///
/// Whatever allocates throws std::bad_alloc when memory runs out, and leaks nothing; nothing else
/// throws. Searches, isMute() and the names allocate nothing; everything is linear in what it looks
/// at. What a search returns is borrowed: it stays valid until the list changes.

#ifndef QOVA_MEDIA_H
#define QOVA_MEDIA_H

#include <list>
#include <string>

#include "qova/enumerations.h"
#include "qova/export.h"

class INetAddress;
class QOVA_AudioAttribute;
class QOVA_Crypto;
class QOVA_FaxAttribute;
class QOVA_MediaAttribute;
namespace Sdp {
class Sdp_Amrwb_Param;
class Sdp_Opus_Param;
}  // namespace Sdp

/// One media line of one side of a call: an `m=` line with what follows it (RFC 4566,
/// section 5.14).
///
/// A media built by this class's constructors always has an address and both parameter objects,
/// and its lists hold no null elements. Copying relies on that; freeing passes null over. Code that
/// sets a member to another object takes over the ownership: it frees the old object first.
class QOVA_API QOVA_Media {
public:
    /// The kind of a media line.
    enum e_MediaType : int {
        MT_NIL = 0,    ///< Not set.
        MT_AUDIO = 1,  ///< Voice, `m=audio`.
        MT_VIDEO = 2,  ///< Video, `m=video`.
        MT_FAX = 3,    ///< T.38 fax, `m=image`.
        MT_DATA = 4    ///< Data.
    };

    /// What became of a media line, or of one payload, in the offer/answer exchange (RFC 3264).
    enum e_MediaStatus : int {
        MS_UNKNOWN = 0,   ///< Not negotiated; in a search: any status.
        MS_ACCEPTED = 1,  ///< Accepted.
        MS_REJECTED = 2,  ///< Rejected, port 0 in SDP.
        MS_MODIFIED = 3   ///< Accepted with changes.
    };

    /// The kind of a payload attribute, as find(e_AttributeType, e_MediaStatus) const selects it.
    /// It is set by whoever fills the attribute and need not agree with the attribute's class.
    enum e_AttributeType : int {
        AT_NIL = 0,    ///< Not set.
        AT_AUDIO = 1,  ///< An audio payload.
        AT_VIDEO = 2,  ///< A video payload.
        AT_FAX = 3,    ///< A fax transport.
        AT_DATA = 4    ///< A data payload.
    };

    /// Outcome of the negotiation for this line.
    e_MediaStatus mediaStatus = MS_ACCEPTED;

    /// Kind of media.
    e_MediaType mediaType = MT_NIL;

    /// Payload attributes in the order of preference, owned.
    std::list<QOVA_MediaAttribute*> attributes;

    /// Connection address (`c=`, RFC 4566, section 5.7), owned. A new media has a copy of
    /// `IPAddress::IpAddressAny`.
    INetAddress* address = nullptr;

    /// The send direction is enabled (`sendrecv` or `sendonly`).
    bool bsnd = true;

    /// The receive direction is enabled (`sendrecv` or `recvonly`).
    bool brcv = true;

    /// First send port, for RTP or UDPTL.
    unsigned short sndPort = 0;

    /// First receive port, for RTP or UDPTL; 0 mutes the line.
    unsigned short rcvPort = 0;

    /// Second send port, for RTCP.
    unsigned short sndPort2 = 0;

    /// Second receive port, for RTCP.
    unsigned short rcvPort2 = 0;

    /// AMR-WB format parameters (RFC 4867), owned. A new media has an object with every parameter
    /// absent.
    Sdp::Sdp_Amrwb_Param* amrwbParam = nullptr;

    /// Opus format parameters (RFC 7587), owned. A new media has an object with every parameter
    /// absent.
    Sdp::Sdp_Opus_Param* opusParam = nullptr;

    /// The number that the log text shows for the crypto lines. The owner keeps it: no operation
    /// derives it from #cryptos.
    unsigned int cryptoCount = 0;

    /// SRTP crypto lines (`a=crypto`, RFC 4568) in the order of preference, owned.
    std::list<QOVA_Crypto*> cryptos;

    /// A media with the defaults that stand beside the members. Makes three allocations: the
    /// address, the AMR-WB and the Opus parameters, in this order.
    QOVA_Media();

    /// A deep copy: the address through `INetAddress::Clone`, attributes and crypto lines through
    /// their virtual `clone`, the parameter objects through their copy constructors. One allocation
    /// for each owned object and each list node.
    /// @param other the source; its address and parameter objects must not be null
    QOVA_Media(const QOVA_Media& other);

    /// A new copy of this media, made by the copy constructor: one allocation more than that makes.
    /// @return an object that the caller owns
    virtual QOVA_Media* clone() const;

    /// Frees the address, the attributes, both parameter objects and the crypto lines, in this
    /// order, each through its virtual destructor. Null pointers are passed over.
    virtual ~QOVA_Media();

    /// Frees what this media owns, then copies every member of the other as the copy constructor
    /// does. Assigning a media to itself does nothing.
    ///
    /// Old objects are freed before their copies are made: both lists and the address first, each
    /// parameter object just before its own copy. So a failed assignment cannot restore them. What
    /// it leaves behind (perhaps without an address or a parameter object) can be destroyed and
    /// assigned again.
    /// @param other the source; its address and parameter objects must not be null
    /// @return this media
    QOVA_Media& operator=(const QOVA_Media& other);

    /// Whether two media say the same, by rules that are partial on purpose:
    /// - status, kind, directions, all four ports and #cryptoCount must agree;
    /// - the addresses are compared by asking this one whether it differs from the other's text;
    /// - **the parameter objects are compared by identity**, as pointers, since their classes offer
    ///   no comparison. Every copy has objects of its own, so a media equals itself but not its
    ///   copy, unless the owner of both has set the pointers to the same objects or to null;
    /// - **attributes and crypto lines are compared side by side until the shorter list ends**, so
    ///   that an answer that keeps the first payloads of an offer can equal it; a list equals every
    ///   longer one that starts with it, and an empty list equals any.
    ///
    /// Allocates nothing but the other address's text.
    /// @param other the media to compare with
    /// @return whether no compared member differs
    bool operator==(const QOVA_Media& other) const;

    /// The first audio attribute with the given codec, in list order. Objects of classes derived
    /// from QOVA_AudioAttribute are found too.
    /// @param codec the codec, or dynamic payload type, to look for
    /// @return the attribute, or null
    QOVA_AudioAttribute* find(QOVA_Codec codec) const;

    /// The first fax attribute with the given transport, in list order. Objects of derived classes
    /// are found too.
    /// @param transport the transport to look for
    /// @return the attribute, or null
    QOVA_FaxAttribute* find(QOVA_FaxTransport transport) const;

    /// The first audio attribute whose tone events (RFC 4733) are carried by the given payload,
    /// that is whose QOVA_AudioAttribute::mf it is. Objects of derived classes are found too.
    /// @param codec the payload of the tone events
    /// @return the attribute, or null
    QOVA_AudioAttribute* find_mf(QOVA_Codec codec) const;

    /// The first attribute of the given type and status, whatever its class.
    /// @param type the value of QOVA_MediaAttribute::attributeType to look for
    /// @param status the status to look for; #MS_UNKNOWN matches any
    /// @return the attribute, or null
    QOVA_MediaAttribute* find(e_AttributeType type, e_MediaStatus status) const;

    /// Whether nothing can be received: the address designates no destination
    /// (`INetAddress::IsAny`), or #rcvPort is 0. The directions and the other ports play no part.
    /// @return whether the line is mute
    bool isMute() const;

    /// The log text: a header line, the attributes' texts and the crypto lines' texts. It holds no
    /// key material.
    /// @return the text, which ends with a newline
    operator const std::string() const;

    /// The printable name of a status: "Accepted", "Rejected", "Modified", or "Unknown" for
    /// #MS_UNKNOWN and for any value without an enumerator.
    /// @param status any value
    /// @return the name; at most 8 characters
    static std::string ToString(e_MediaStatus status);

    /// The printable name of a media kind: "Audio", "Video", "Fax", "Data", or "Nil" for #MT_NIL
    /// and for any value without an enumerator.
    /// @param type any value
    /// @return the name; at most 5 characters
    static std::string ToString(e_MediaType type);

private:
    struct Unfilled {};

    /// Owns nothing yet, and can be destroyed: the other constructors start from here, so that the
    /// destructor cleans up when a later step of theirs throws.
    explicit QOVA_Media(Unfilled /*unused*/) {}
};

#endif
