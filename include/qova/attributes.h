/// @file
/// Payload attributes of a media line: one object for each audio payload, fax transport, video
/// payload or data payload, in the list QOVA_Media::attributes.
///
/// Attributes are plain values that own nothing; the media owns the attributes in its list. The
/// order of the data members and of the virtual functions is ABI.
///
/// Operations that allocate throw std::bad_alloc when memory runs out, and leak nothing. Nothing
/// else throws. A clone and a text allocate; a comparison does not.

#ifndef QOVA_ATTRIBUTES_H
#define QOVA_ATTRIBUTES_H

#include <string>

#include "qova/enumerations.h"
#include "qova/export.h"
#include "qova/media.h"

/// One payload of a media line: a format of its `m=` line with the `a=rtpmap` and `a=fmtp` lines of
/// that format (RFC 4566, sections 5.14 and 6). The parameters of AMR-WB and Opus belong to the
/// media: QOVA_Media::amrwbParam and QOVA_Media::opusParam.
class QOVA_API QOVA_MediaAttribute {
public:
    /// Outcome of the negotiation for this payload. Never compared; only an audio attribute prints
    /// it.
    QOVA_Media::e_MediaStatus status = QOVA_Media::MS_UNKNOWN;

    /// The kind by which QOVA_Media::find selects this attribute. Never compared, never printed.
    QOVA_Media::e_AttributeType attributeType = QOVA_Media::AT_NIL;

    /// Does nothing: attributes own nothing.
    virtual ~QOVA_MediaAttribute();

    /// Makes a new object of the same class with the same fields, including #status and
    /// #attributeType. One allocation.
    /// @return the copy, which the caller owns
    virtual QOVA_MediaAttribute* clone() const = 0;

    /// Returns the log text: one or more whole lines, each ending with a newline.
    /// @return the text
    virtual operator const std::string() const = 0;

    /// Returns true if `other` has exactly the same dynamic type and equal fields. Ignores #status
    /// and #attributeType. The base implementation always returns false, even for `*this`, so a
    /// class that does not override it equals nothing.
    ///
    /// **In C++20** the compiler also considers the reversed comparison. A plain `a == b` of two
    /// objects of the same derived class may cause a warning; with two different derived classes it
    /// does not compile; with a base reference on the left and a derived object on the right it
    /// calls the operator of the right operand. `a.operator==(b)` calls the operator of `a` in
    /// every language version, without a warning; so does `==` between two base references.
    /// @param other the attribute to compare with
    /// @return always false
    virtual bool operator==(const QOVA_MediaAttribute& other) const;
};

/// One audio payload (RFC 3551): a codec with its framing, voice activity, echo and tone settings.
class QOVA_API QOVA_AudioAttribute : public QOVA_MediaAttribute {
public:
    /// The codec, or the number of a dynamic payload type.
    QOVA_Codec codec = CODEC_NIL;

    /// Packet time (`a=ptime`) in milliseconds; stored and printed as is.
    int framing = 0;

    /// Voice activity detection is on.
    bool vad = false;

    /// Echo handling is on.
    bool echo = false;

    /// Longest packet time (`a=maxptime`) in milliseconds; stored and printed as is.
    int mxFraming = 0;

    /// The payload type that carries the tone events (`telephone-event`, RFC 4733) of this payload.
    /// Printed as a number, not by name.
    QOVA_Codec mf = CODEC_NIL;

    /// @copydoc QOVA_MediaAttribute::clone
    QOVA_MediaAttribute* clone() const override;

    /// Returns the log text: one line with the names of codec and status, and the other fields.
    /// @return the text
    operator const std::string() const override;

    /// Compares all six fields of this class.
    /// @param other the attribute to compare with
    /// @return true if `other` is exactly a QOVA_AudioAttribute with equal fields
    bool operator==(const QOVA_MediaAttribute& other) const override;
};

/// One video payload (RFC 3551). It has no fields of its own.
class QOVA_API QOVA_VideoAttribute : public QOVA_MediaAttribute {
public:
    /// @copydoc QOVA_MediaAttribute::clone
    QOVA_MediaAttribute* clone() const override;

    /// Returns the log text, which is always the same: it says that video is not implemented.
    /// @return the text
    operator const std::string() const override;

    /// Compares the classes: any two video attributes are equal.
    /// @param other the attribute to compare with
    /// @return true if `other` is exactly a QOVA_VideoAttribute
    bool operator==(const QOVA_MediaAttribute& other) const override;
};

/// How the TCF signal of a fax is checked (ITU-T T.38 Annex D, `T38FaxRateManagement`).
enum QOVA_FaxRateMgt : int {
    RM_NIL = 0,      ///< Not set.
    RM_TRFTCF = 1,   ///< `transferredTCF`: TCF passes through to the remote fax.
    RM_LOCALTCF = 2  ///< `localTCF`: the gateway checks TCF.
};

/// One T.38 fax transport with its parameters (ITU-T T.38 Annex D).
class QOVA_API QOVA_FaxAttribute : public QOVA_MediaAttribute {
public:
    /// Redundancy, in the owner's unit; stored and printed as is.
    unsigned int red = 0;

    /// Depth, in the owner's unit; stored and printed as is.
    unsigned int depth = 0;

    /// Highest bit rate (`T38MaxBitRate`) in bit/s.
    unsigned int mxRate = 0;

    /// Rate management (`T38FaxRateManagement`).
    QOVA_FaxRateMgt rateMgt = RM_NIL;

    /// Transport.
    QOVA_FaxTransport transport = FT_NIL;

    /// Fill bits are removed (`T38FaxFillBitRemoval`).
    bool fillBit = false;

    /// MMR is transcoded (`T38FaxTranscodingMMR`).
    bool transMMR = false;

    /// JBIG is transcoded (`T38FaxTranscodingJBIG`).
    bool transJBIG = false;

    /// Largest buffer (`T38FaxMaxBuffer`) in bytes.
    unsigned int mxBuffer = 0;

    /// Largest datagram (`T38FaxMaxDatagram`) in bytes.
    unsigned int mxDgram = 0;

    /// Error correction (`T38FaxUdpEC`), a number that the owner encodes.
    unsigned int errCorr = 0;

    /// @copydoc QOVA_MediaAttribute::clone
    QOVA_MediaAttribute* clone() const override;

    /// Returns the log text: three lines with all fields of this class, the transport first.
    /// @return the text
    operator const std::string() const override;

    /// Compares all eleven fields of this class.
    /// @param other the attribute to compare with
    /// @return true if `other` is exactly a QOVA_FaxAttribute with equal fields
    bool operator==(const QOVA_MediaAttribute& other) const override;
};

/// One data payload: a format of a line such as `m=application` or `m=message` (RFC 4566, section
/// 5.14).
class QOVA_API QOVA_DataAttribute : public QOVA_MediaAttribute {
public:
    /// The type of the payload, a number that the owner encodes. Compared, but not printed.
    int type = 0;

    /// @copydoc QOVA_MediaAttribute::clone
    QOVA_MediaAttribute* clone() const override;

    /// Returns the log text, which is always the same: it shows "NIL" whatever the #type is, so
    /// that logs of different releases stay comparable.
    /// @return the text
    operator const std::string() const override;

    /// Compares the #type.
    /// @param other the attribute to compare with
    /// @return true if `other` is exactly a QOVA_DataAttribute with an equal #type
    bool operator==(const QOVA_MediaAttribute& other) const override;
};

#endif
