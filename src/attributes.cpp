#include "qova/attributes.h"

#include <typeinfo>

#include "text.h"

namespace {

// Both are literals because QOVA_DataAttribute::type and all of video stay out of the log.
constexpr char video_text[] = "\t\t -> video : not implemented\n";
constexpr char data_text[] = "\t\t -> Data / type=NIL\n";

void append_text(std::string& text, const QOVA_AudioAttribute& audio) {
    qova::append(text, "\t\t -> ", audio.codec, " / ", audio.status, " / framing=", audio.framing,
                 " / vad=", audio.vad, " / echo=", audio.echo, " / mxFraming=", audio.mxFraming,
                 " / MF=", static_cast<int>(audio.mf), "\n");
}

void append_text(std::string& text, const QOVA_FaxAttribute& fax) {
    qova::append(text, "\t\t -> fax / transport=", fax.transport, " / red=", fax.red,
                 " / depth=", fax.depth, " / mxRate=", fax.mxRate,
                 "\n\t\t    rateMgt=", fax.rateMgt, " / fillBit=", fax.fillBit,
                 " / transMMR=", fax.transMMR, " / transJBIG=", fax.transJBIG,
                 "\n\t\t    mxBuffer=", fax.mxBuffer, "/ mxDgram=", fax.mxDgram,
                 " / errCorr=", fax.errCorr, "\n");
}

template <class T>
std::string text_of(const T& attribute) {
    std::string text;
    append_text(text, attribute);
    return text;
}

}  // namespace

void qova::append_text(std::string& text, const QOVA_MediaAttribute& attribute) {
    // The exact classes only: a derived one may have another text, and gives it itself.
    const std::type_info& type = typeid(attribute);
    if (type == typeid(QOVA_AudioAttribute)) {
        ::append_text(text, static_cast<const QOVA_AudioAttribute&>(attribute));
    } else if (type == typeid(QOVA_FaxAttribute)) {
        ::append_text(text, static_cast<const QOVA_FaxAttribute&>(attribute));
    } else if (type == typeid(QOVA_VideoAttribute)) {
        append(text, video_text);
    } else if (type == typeid(QOVA_DataAttribute)) {
        append(text, data_text);
    } else {
        text += static_cast<const std::string>(attribute);
    }
}

QOVA_MediaAttribute::~QOVA_MediaAttribute() = default;

bool QOVA_MediaAttribute::operator==(const QOVA_MediaAttribute& /*other*/) const {
    return false;
}

QOVA_MediaAttribute* QOVA_AudioAttribute::clone() const {
    return new QOVA_AudioAttribute(*this);
}

QOVA_AudioAttribute::operator const std::string() const {
    return text_of(*this);
}

bool QOVA_AudioAttribute::operator==(const QOVA_MediaAttribute& other) const {
    if (typeid(other) != typeid(QOVA_AudioAttribute)) {
        return false;
    }
    const auto& audio = static_cast<const QOVA_AudioAttribute&>(other);
    return codec == audio.codec && framing == audio.framing && vad == audio.vad &&
           echo == audio.echo && mxFraming == audio.mxFraming && mf == audio.mf;
}

QOVA_MediaAttribute* QOVA_VideoAttribute::clone() const {
    return new QOVA_VideoAttribute(*this);
}

QOVA_VideoAttribute::operator const std::string() const {
    return video_text;
}

bool QOVA_VideoAttribute::operator==(const QOVA_MediaAttribute& other) const {
    return typeid(other) == typeid(QOVA_VideoAttribute);
}

QOVA_MediaAttribute* QOVA_FaxAttribute::clone() const {
    return new QOVA_FaxAttribute(*this);
}

QOVA_FaxAttribute::operator const std::string() const {
    return text_of(*this);
}

bool QOVA_FaxAttribute::operator==(const QOVA_MediaAttribute& other) const {
    if (typeid(other) != typeid(QOVA_FaxAttribute)) {
        return false;
    }
    const auto& fax = static_cast<const QOVA_FaxAttribute&>(other);
    return red == fax.red && depth == fax.depth && mxRate == fax.mxRate && rateMgt == fax.rateMgt &&
           transport == fax.transport && fillBit == fax.fillBit && transMMR == fax.transMMR &&
           transJBIG == fax.transJBIG && mxBuffer == fax.mxBuffer && mxDgram == fax.mxDgram &&
           errCorr == fax.errCorr;
}

QOVA_MediaAttribute* QOVA_DataAttribute::clone() const {
    return new QOVA_DataAttribute(*this);
}

QOVA_DataAttribute::operator const std::string() const {
    return data_text;
}

bool QOVA_DataAttribute::operator==(const QOVA_MediaAttribute& other) const {
    return typeid(other) == typeid(QOVA_DataAttribute) &&
           type == static_cast<const QOVA_DataAttribute&>(other).type;
}
