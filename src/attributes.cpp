#include "qova/attributes.h"

#include "exact_class.h"
#include "text.h"

namespace {

void append_own(std::string& text, const QOVA_AudioAttribute& audio) {
    qova::append(text, "\t\t -> ", audio.codec, " / ", audio.status, " / framing=", audio.framing,
                 " / vad=", audio.vad, " / echo=", audio.echo, " / mxFraming=", audio.mxFraming,
                 " / MF=", static_cast<int>(audio.mf), "\n");
}

void append_own(std::string& text, const QOVA_VideoAttribute& /*video*/) {
    qova::append(text, "\t\t -> video : not implemented\n");
}

void append_own(std::string& text, const QOVA_FaxAttribute& fax) {
    qova::append(text, "\t\t -> fax / transport=", fax.transport, " / red=", fax.red,
                 " / depth=", fax.depth, " / mxRate=", fax.mxRate,
                 "\n\t\t    rateMgt=", fax.rateMgt, " / fillBit=", fax.fillBit,
                 " / transMMR=", fax.transMMR, " / transJBIG=", fax.transJBIG,
                 "\n\t\t    mxBuffer=", fax.mxBuffer, "/ mxDgram=", fax.mxDgram,
                 " / errCorr=", fax.errCorr, "\n");
}

// Shows "NIL" whatever the type is, so that logs of different releases stay comparable.
void append_own(std::string& text, const QOVA_DataAttribute& /*data*/) {
    qova::append(text, "\t\t -> Data / type=NIL\n");
}

template <class Attribute>
std::string own_text(const Attribute& attribute) {
    std::string text;
    append_own(text, attribute);
    return text;
}

// Appends the text of an attribute that is exactly a `Class`. Returns false for other attributes.
template <class Class>
bool append_exactly(std::string& text, const QOVA_MediaAttribute& attribute) {
    const Class* const own = qova::exactly<Class>(attribute);
    if (own != nullptr) {
        append_own(text, *own);
    }
    return own != nullptr;
}

}  // namespace

void qova::append_text(std::string& text, const QOVA_MediaAttribute& attribute) {
    // An attribute of a derived class may have its own text, so it renders itself.
    if (!append_exactly<QOVA_AudioAttribute>(text, attribute) &&
        !append_exactly<QOVA_FaxAttribute>(text, attribute) &&
        !append_exactly<QOVA_VideoAttribute>(text, attribute) &&
        !append_exactly<QOVA_DataAttribute>(text, attribute)) {
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
    return own_text(*this);
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
    return own_text(*this);
}

bool QOVA_VideoAttribute::operator==(const QOVA_MediaAttribute& other) const {
    return qova::exactly<QOVA_VideoAttribute>(other) != nullptr;
}

QOVA_MediaAttribute* QOVA_FaxAttribute::clone() const {
    return new QOVA_FaxAttribute(*this);
}

QOVA_FaxAttribute::operator const std::string() const {
    return own_text(*this);
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
    return own_text(*this);
}

bool QOVA_DataAttribute::operator==(const QOVA_MediaAttribute& other) const {
    const auto* data = qova::exactly<QOVA_DataAttribute>(other);
    return data != nullptr && type == data->type;
}
