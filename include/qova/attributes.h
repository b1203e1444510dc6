/// @file
/// Payload attributes of a media line: one object for each audio payload, fax transport, video
/// payload or data payload, in the list QOVA_Media::attributes.
///
/// Attributes are plain values that own nothing; they belong to the media in whose list they stand.
/// The order of the data members and of the virtual functions is ABI.
///
/// Whatever allocates throws std::bad_alloc when memory runs out, and leaks nothing; nothing else
/// throws. A clone and a text allocate; a comparison does not.

#ifndef QOVA_ATTRIBUTES_H
#define QOVA_ATTRIBUTES_H

#include <string>

#include "qova/enumerations.h"
#include "qova/export.h"
#include "qova/media.h"

/// One payload of a media line: a format of its `m=` line with the `a=rtpmap` and `a=fmtp` of that
/// format (RFC 4566, sections 5.14 and 6).
class QOVA_API QOVA_MediaAttribute {
public:
    /// Outcome of the negotiation for this payload. No comparison looks at it, and only an audio
    /// attribute prints it.
    QOVA_Media::e_MediaStatus status = QOVA_Media::MS_UNKNOWN;

    /// The kind under which QOVA_Media::find finds this attribute. Never compared, never printed.
    QOVA_Media::e_AttributeType attributeType = QOVA_Media::AT_NIL;

    /// Does nothing: attributes own nothing.
    virtual ~QOVA_MediaAttribute();

    /// A new object of the same class with the same fields, #status and #attributeType included.
    /// One allocation.
    /// @return an object that the caller owns
    virtual QOVA_MediaAttribute* clone() const = 0;

    /// The log text: one or more whole lines, each ended by a newline.
    /// @return the text
    virtual operator const std::string() const = 0;

    /// Whether this attribute equals another: only one of exactly the class whose comparison is
    /// asked can, and then that class's own fields decide; #status and #attributeType never do. The
    /// base says no to everything, itself included: a class that does not override this has no
    /// equal.
    ///
    /// **In C++20** the compiler also weighs the reversed comparison: a plain `a == b` of two
    /// objects of the same derived class may draw a warning, one of two different derived classes
    /// does not compile, and with a reference to the base on the left and a derived object on the
    /// right it asks the right one. `a.operator==(b)` is quiet and asks `a` in every language
    /// version; so does `==` between two references to the base.
    /// @param other the attribute to compare with
    /// @return false
    virtual bool operator==(const QOVA_MediaAttribute& other) const;
};

/// One audio payload (RFC 3551): a codec with its framing, voice activity, echo and tone settings.
class QOVA_API QOVA_AudioAttribute : public QOVA_MediaAttribute {
public:
    /// The codec, or the number of a dynamic payload type.
    QOVA_Codec codec = CODEC_NIL;

    /// Packet time (`a=ptime`) in milliseconds; stored and printed as it is.
    int framing = 0;

    /// Voice activity detection is on.
    bool vad = false;

    /// Echo handling is on.
    bool echo = false;

    /// Longest packet time (`a=maxptime`) in milliseconds; stored and printed as it is.
    int mxFraming = 0;

    /// The payload type that carries tone events (`telephone-event`, RFC 4733) for this payload.
    /// Printed as a number, not by name.
    QOVA_Codec mf = CODEC_NIL;

    /// @copydoc QOVA_MediaAttribute::clone
    QOVA_MediaAttribute* clone() const override;

    /// The log text: one line with the codec's name, the status's name and the other fields.
    /// @return the text
    operator const std::string() const override;

    /// Whether the other is exactly a QOVA_AudioAttribute and all six own fields agree.
    /// @param other the attribute to compare with
    /// @return whether both describe the same payload
    bool operator==(const QOVA_MediaAttribute& other) const override;
};

/// One video payload (RFC 3551). It has no fields of its own.
class QOVA_API QOVA_VideoAttribute : public QOVA_MediaAttribute {
public:
    /// @copydoc QOVA_MediaAttribute::clone
    QOVA_MediaAttribute* clone() const override;

    /// The log text, which is always the same: it says that video is not implemented.
    /// @return the text
    operator const std::string() const override;

    /// Whether the other is exactly a QOVA_VideoAttribute: any two are equal.
    /// @param other the attribute to compare with
    /// @return whether both are video attributes
    bool operator==(const QOVA_MediaAttribute& other) const override;
};

/// How the TCF signal of a fax is checked (ITU-T T.38 Annex D, `T38FaxRateManagement`).
enum QOVA_FaxRateMgt : int {
    RM_NIL = 0,      ///< Not set.
    RM_TRFTCF = 1,   ///< `transferredTCF`: TCF goes through to the far fax.
    RM_LOCALTCF = 2  ///< `localTCF`: TCF is checked by the gateway.
};

/// One T.38 fax transport with its parameters (ITU-T T.38 Annex D).
class QOVA_API QOVA_FaxAttribute : public QOVA_MediaAttribute {
public:
    /// Redundancy, in the owner's unit; stored and printed as it is.
    unsigned int red = 0;

    /// Depth, in the owner's unit; stored and printed as it is.
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

    /// Greatest buffer (`T38FaxMaxBuffer`) in bytes.
    unsigned int mxBuffer = 0;

    /// Greatest datagram (`T38FaxMaxDatagram`) in bytes.
    unsigned int mxDgram = 0;

    /// Error correction (`T38FaxUdpEC`), a plain number whose coding is the owner's.
    unsigned int errCorr = 0;

    /// @copydoc QOVA_MediaAttribute::clone
    QOVA_MediaAttribute* clone() const override;

    /// The log text: three lines with all own fields, the transport first.
    /// @return the text
    operator const std::string() const override;

    /// Whether the other is exactly a QOVA_FaxAttribute and all eleven own fields agree.
    /// @param other the attribute to compare with
    /// @return whether both describe the same fax transport
    bool operator==(const QOVA_MediaAttribute& other) const override;
};

/// One data payload: a format of a line such as `m=application` or `m=message` (RFC 4566, section
/// 5.14).
class QOVA_API QOVA_DataAttribute : public QOVA_MediaAttribute {
public:
    /// The payload's type; its coding is the owner's. Compared, but not printed.
    int type = 0;

    /// @copydoc QOVA_MediaAttribute::clone
    QOVA_MediaAttribute* clone() const override;

    /// The log text, which is always the same: it says "NIL" whatever the #type, so that logs of
    /// different releases stay comparable.
    /// @return the text
    operator const std::string() const override;

    /// Whether the other is exactly a QOVA_DataAttribute of the same #type.
    /// @param other the attribute to compare with
    /// @return whether both describe the same data payload
    bool operator==(const QOVA_MediaAttribute& other) const override;
};

#endif
