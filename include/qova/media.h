/// @file
/// One negotiated media line of a session description (RFC 4566, section 5.14): its kind, outcome,
/// address, ports, directions, payload attributes, codec parameters and SRTP crypto lines.
///
/// A QOVA_Media owns everything that its pointers and lists point to. Two media never share an
/// object; every copy makes its own. The order of the data members and of the virtual functions is
/// ABI.
///
/// Operations that allocate throw std::bad_alloc when memory runs out, and leak nothing. Nothing
/// else throws. Searches, isMute() and the name functions do not allocate. Every operation takes
/// time linear in the elements that it visits. Searches return borrowed pointers, which stay valid
/// until the list changes.

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

/// One media line of one side of a call: an `m=` line and the lines that belong to it (RFC 4566,
/// section 5.14).
///
/// The constructors always set the address and both parameter objects, and the lists never hold
/// null. Copying, the log text, equality and isMute() rely on that, except that equality accepts
/// null parameter objects. A media with null pointers can be destroyed, or be the target of an
/// assignment. Code that replaces an owned object must free the old one; qova/ownership.h has
/// functions for that.
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

    /// The outcome of the offer/answer exchange for a media line or for one payload (RFC 3264).
    enum e_MediaStatus : int {
        MS_UNKNOWN = 0,   ///< Not negotiated; in a search, any status.
        MS_ACCEPTED = 1,  ///< Accepted.
        MS_REJECTED = 2,  ///< Rejected: port 0 in SDP.
        MS_MODIFIED = 3   ///< Accepted with changes.
    };

    /// The kind of a payload attribute, for find(e_AttributeType, e_MediaStatus) const. The code
    /// that fills the attribute sets it; it need not match the attribute's class.
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

    /// Payload attributes in order of preference; owned, never null.
    std::list<QOVA_MediaAttribute*> attributes;

    /// Connection address (`c=`, RFC 4566, section 5.7), owned. A new media has a copy of
    /// `IPAddress::IpAddressAny`.
    INetAddress* address = nullptr;

    /// Sending is enabled (`sendrecv` or `sendonly`).
    bool bsnd = true;

    /// Receiving is enabled (`sendrecv` or `recvonly`).
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

    /// The number of crypto lines that the log text shows. The owner maintains it: no operation
    /// derives it from #cryptos.
    unsigned int cryptoCount = 0;

    /// SRTP crypto lines (`a=crypto`, RFC 4568) in order of preference; owned, never null.
    std::list<QOVA_Crypto*> cryptos;

    /// Makes a media with the default member initialisers. Allocates the address, the AMR-WB
    /// parameters and the Opus parameters, in this order.
    QOVA_Media();

    /// Makes a deep copy: the address through `INetAddress::Clone`, attributes and crypto lines
    /// through their virtual `clone`, the parameter objects through their copy constructors. One
    /// allocation for each owned object and each list node.
    /// @param other the source; its address and parameter objects must not be null
    QOVA_Media(const QOVA_Media& other);

    /// Makes a new copy with the copy constructor. The new object is one more allocation.
    /// @return the copy, which the caller owns
    virtual QOVA_Media* clone() const;

    /// Frees the address, the attributes, both parameter objects and the crypto lines, in this
    /// order, each through its virtual destructor. Skips null pointers.
    virtual ~QOVA_Media();

    /// Frees the objects that this media owns, then copies every member of `other` as the copy
    /// constructor does. Self-assignment does nothing.
    ///
    /// Old objects are freed before the new ones are made: first both lists and the address, then
    /// each parameter object just before its copy. If memory runs out, the media may be left
    /// without an address or a parameter object; it can still be destroyed or assigned again.
    /// @param other the source; its address and parameter objects must not be null
    /// @return this media
    QOVA_Media& operator=(const QOVA_Media& other);

    /// Compares two media. The comparison is deliberately partial:
    /// - status, kind, directions, all four ports and #cryptoCount must be equal;
    /// - this media's address must not differ (`INetAddress::operator!=`) from the text of the
    ///   other address;
    /// - **the parameter objects are compared by identity**, as pointers, because their classes
    ///   have no comparison. Every copy has its own objects, so a media equals itself but not its
    ///   copy, unless the owner of both sets the pointers to the same objects or to null;
    /// - **attributes and crypto lines are compared pair by pair until the shorter list ends**. An
    ///   answer that keeps the first payloads of an offer can therefore equal it, and an empty
    ///   list equals any list.
    ///
    /// Allocates only the text of the other address.
    /// @param other the media to compare with
    /// @return true if no compared member differs
    bool operator==(const QOVA_Media& other) const;

    /// Finds the first audio attribute with the given codec, in list order. Matches classes derived
    /// from QOVA_AudioAttribute, too.
    /// @param codec the codec, or dynamic payload type, to look for
    /// @return the attribute, or null
    QOVA_AudioAttribute* find(QOVA_Codec codec) const;

    /// Finds the first fax attribute with the given transport, in list order. Matches derived
    /// classes, too.
    /// @param transport the transport to look for
    /// @return the attribute, or null
    QOVA_FaxAttribute* find(QOVA_FaxTransport transport) const;

    /// Finds the first audio attribute whose tone events (RFC 4733) use the given payload, that is,
    /// whose QOVA_AudioAttribute::mf equals `codec`. Matches derived classes, too.
    /// @param codec the payload of the tone events
    /// @return the attribute, or null
    QOVA_AudioAttribute* find_mf(QOVA_Codec codec) const;

    /// Finds the first attribute with the given type and status, whatever its class.
    /// @param type the value of QOVA_MediaAttribute::attributeType to look for
    /// @param status the status to look for; #MS_UNKNOWN matches any
    /// @return the attribute, or null
    QOVA_MediaAttribute* find(e_AttributeType type, e_MediaStatus status) const;

    /// Returns true if nothing can be received: the address is not a usable destination
    /// (`INetAddress::IsAny`), or #rcvPort is 0. Ignores the directions and the other ports.
    /// @return true if the line is mute
    bool isMute() const;

    /// Returns the log text: a header line, the texts of the attributes and the texts of the crypto
    /// lines. It contains no key material.
    /// @return the text, which ends with a newline
    operator const std::string() const;

    /// Returns the printable name of a status: "Accepted", "Rejected", "Modified", or "Unknown" for
    /// #MS_UNKNOWN and for any value without an enumerator.
    /// @param status any value
    /// @return the name; at most 8 characters
    static std::string ToString(e_MediaStatus status);

    /// Returns the printable name of a media kind: "Audio", "Video", "Fax", "Data", or "Nil" for
    /// #MT_NIL and for any value without an enumerator.
    /// @param type any value
    /// @return the name; at most 5 characters
    static std::string ToString(e_MediaType type);

private:
    struct Unfilled {};

    /// Makes an empty media that can be destroyed. The other constructors delegate to this one, so
    /// the destructor cleans up if a later step throws.
    explicit QOVA_Media(Unfilled /*unused*/) {}
};

#endif
