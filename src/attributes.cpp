#include "qova/attributes.h"

#include "exact_class.h"
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
    if (const auto* audio = exactly<QOVA_AudioAttribute>(attribute)) {
        ::append_text(text, *audio);
    } else if (const auto* fax = exactly<QOVA_FaxAttribute>(attribute)) {
        ::append_text(text, *fax);
    } else if (exactly<QOVA_VideoAttribute>(attribute) != nullptr) {
        append(text, video_text);
    } else if (exactly<QOVA_DataAttribute>(attribute) != nullptr) {
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
    const auto* audio = qova::exactly<QOVA_AudioAttribute>(other);
    return audio != nullptr && codec == audio->codec && framing == audio->framing &&
           vad == audio->vad && echo == audio->echo && mxFraming == audio->mxFraming &&
           mf == audio->mf;
}

QOVA_MediaAttribute* QOVA_VideoAttribute::clone() const {
    return new QOVA_VideoAttribute(*this);
}

QOVA_VideoAttribute::operator const std::string() const {
    return qova::text_of(video_text);
}

bool QOVA_VideoAttribute::operator==(const QOVA_MediaAttribute& other) const {
    return qova::exactly<QOVA_VideoAttribute>(other) != nullptr;
}

QOVA_MediaAttribute* QOVA_FaxAttribute::clone() const {
    return new QOVA_FaxAttribute(*this);
}

QOVA_FaxAttribute::operator const std::string() const {
    return text_of(*this);
}

bool QOVA_FaxAttribute::operator==(const QOVA_MediaAttribute& other) const {
    const auto* fax = qova::exactly<QOVA_FaxAttribute>(other);
    return fax != nullptr && red == fax->red && depth == fax->depth && mxRate == fax->mxRate &&
           rateMgt == fax->rateMgt && transport == fax->transport && fillBit == fax->fillBit &&
           transMMR == fax->transMMR && transJBIG == fax->transJBIG && mxBuffer == fax->mxBuffer &&
           mxDgram == fax->mxDgram && errCorr == fax->errCorr;
}

QOVA_MediaAttribute* QOVA_DataAttribute::clone() const {
    return new QOVA_DataAttribute(*this);
}

QOVA_DataAttribute::operator const std::string() const {
    return qova::text_of(data_text);
}

bool QOVA_DataAttribute::operator==(const QOVA_MediaAttribute& other) const {
    const auto* data = qova::exactly<QOVA_DataAttribute>(other);
    return data != nullptr && type == data->type;
}
