#include "properties.h"

#include <algorithm>

#include "sdp/strings.h"

namespace tools {

namespace {

void demand(bool holds, const std::string& what, const std::string& detail = "") {
    if (!holds) {
        throw Broken(detail.empty() ? what : what + ":\n" + detail);
    }
}

std::string all_of(const Diagnostics& diagnostics) {
    std::string all;
    for (const std::string& line : shown(diagnostics)) {
        all += line + "\n";
    }
    return all;
}

void check_messages(const Diagnostics& diagnostics, const std::string& text) {
    const auto is_end = [](char byte) { return byte == '\n' || byte == '\r'; };
    const auto last = static_cast<std::size_t>(std::count_if(text.begin(), text.end(), is_end)) + 1;
    for (const sdp::Diagnostic& one : diagnostics) {
        demand(!one.message.empty(), "a message is empty");
        demand(one.line <= last, "a message names a line that does not exist", all_of(diagnostics));
        demand(std::all_of(one.message.begin(), one.message.end(),
                           [](char byte) { return byte >= ' ' && byte <= '~'; }),
               "a message is not printable", one.message);
    }
    const auto is_before = [](const auto& left, const auto& right) {
        return left.line < right.line;
    };
    demand(std::is_sorted(diagnostics.begin(), diagnostics.end(), is_before),
           "the messages are not in line order");
}

// --- Keys ----------------------------------------------------------------------------------------

// Shorter texts can be in a description for other reasons.
constexpr std::size_t least_key = 37;
constexpr std::size_t searched = 12;
constexpr std::size_t shown_bytes = 8;  // of a key, in hexadecimal and decimal

// Decodes base64, up to the first other character.
std::string bytes_of(const std::string& base64) {
    std::string bytes;
    std::size_t value = 0;
    for (std::size_t i = 0; i < base64.size(); ++i) {
        const std::size_t digit = base64_digits.find(base64[i]);
        if (digit == std::string_view::npos) {
            break;
        }
        value = (value << 6U | digit) & 0xFFFFU;
        if (i % 4 != 0) {
            bytes += static_cast<char>(value >> (6 - 2 * (i % 4)));
        }
    }
    return bytes;
}

std::size_t count(const std::string& text, const std::string& what) {
    std::size_t found = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++found;
    }
    return found;
}

// Returns the keys that occur in a text only after "inline:".
std::vector<std::string> offered_keys(const std::string& text) {
    constexpr std::string_view method = "inline:";
    std::vector<std::string> keys;
    for (std::size_t at = text.find(method); at != std::string::npos; at = text.find(method, at)) {
        at += method.size();
        const std::size_t size = std::min(text.find_first_of("|; \t\r\n", at), text.size()) - at;
        const std::string key = text.substr(at, size);
        const std::string begin = key.substr(0, searched);
        const bool is_elsewhere = count(text, begin) != count(text, "inline:" + begin);
        const bool is_number = begin == std::string(begin.size(), 'A');
        const bool is_key = size >= least_key && bytes_of(begin).size() >= shown_bytes;
        if (is_key && !is_elsewhere && !is_number) {
            keys.push_back(key);
        }
    }
    return keys;
}

// Searches for the base64 of a key, and for its first bytes in hexadecimal and decimal.
void check_without_key(const std::string& shown, const std::string& key) {
    const std::string bytes = bytes_of(key).substr(0, shown_bytes);
    std::string decimal;
    for (const char byte : bytes) {
        decimal += (decimal.empty() ? "" : ", ") + std::to_string(static_cast<unsigned char>(byte));
    }
    for (const std::string& form : {key.substr(0, searched), hexadecimal(bytes), decimal}) {
        demand(shown.find(form) == std::string::npos, "a key is shown", shown);
    }
}

// Only these lines of an answer are free of offered keys: others can repeat lines of the offer.
std::string crypto_lines(const std::string& answer) {
    std::string lines;
    for (const std::string_view line : sdp::split(answer, "\n")) {
        if (sdp::starts_with(line, "a=crypto:")) {
            lines.append(line);
        }
    }
    return lines;
}

void check_without_keys(const std::string& shown, const std::string& text) {
    // The word for other kinds of keys in the cases.
    demand(shown.find("SecretKeyMaterial") == std::string::npos, "a secret is shown", shown);
    for (const std::string& key : offered_keys(text)) {
        check_without_key(shown, key);
    }
}

// --- Reading -------------------------------------------------------------------------------------

// Returns true if the description can be read.
bool check_reading(const std::string& text, Role role) {
    const Result<Read> lenient = read(text, role, Strictness::LENIENT);
    const Result<Read> strict = read(text, role, Strictness::STRICT);
    const Diagnostics& expected = lenient.is_refused() ? lenient.refusal : lenient.value.warnings;
    check_messages(expected, text);
    check_without_keys(lenient.value.log + all_of(expected), text);
    demand(strict.is_refused() == !expected.empty() &&
               (expected.empty() || all_of(strict.refusal) == all_of({expected.front()})),
           "the strict refusal is not the first warning", all_of(strict.refusal));
    demand(strict.is_refused() || strict.value.log == lenient.value.log,
           "the strict reading differs", strict.value.log);
    return !lenient.is_refused();
}

std::string log_of(const std::string& text, Role role) {
    const Result<Read> reading = read(text, role, Strictness::LENIENT);
    demand(!reading.is_refused(), "the output of a tool is refused",
           all_of(reading.refusal) + text);
    return reading.value.log;
}

}  // namespace

void check_move(const std::string& text, const Journey& there, Counts& counts) {
    const Result<Read> reading = read(text, there.options.role, there.options.strictness);
    const Result<sdp::Move> moved = move(text, there);
    const Diagnostics& messages = moved.is_refused() ? moved.refusal : moved.value.diagnostics;
    check_messages(messages, text);
    check_without_keys(moved.value.log_after + all_of(messages), text);
    demand(!reading.is_refused() || all_of(moved.refusal) == all_of(reading.refusal),
           "the move is refused for a different reason", all_of(moved.refusal));
    if (moved.is_refused()) {
        return;
    }
    ++counts.moved;
    const Role role = there.options.role;
    demand(moved.value.log_before == log_of(text, role), "the log before the move is wrong",
           moved.value.log_before);
    demand(moved.value.log_after == log_of(moved.value.text, role),
           "the log after the move is wrong", moved.value.log_after + moved.value.text);
    if (!moved.value.old_address) {
        demand(there.options.back || there.options.merge, "the move has no way back",
               moved.value.text);
        return;
    }
    Journey back = there;
    back.plan.address = *moved.value.old_address;
    back.options.back = !there.options.back;
    back.options.strictness = Strictness::LENIENT;
    const Result<sdp::Move> restored = move(moved.value.text, back);
    demand(!restored.is_refused(), "the way back is refused", all_of(restored.refusal));
    demand(restored.value.text == text, "the way back does not restore the description",
           restored.value.text);
    ++counts.restored;
}

void check_answer(const std::string& text, const Side& side, Counts& counts) {
    const Result<Read> offer = read(text, Role::OFFER, Strictness::LENIENT);
    const Result<Answered> first = answer(text, side);
    check_messages(first.refusal, text);
    check_without_keys(all_of(first.refusal), text);
    if (first.is_refused()) {
        // Public ports can exceed 65535.
        demand(offer.is_refused() ? all_of(first.refusal) == all_of(offer.refusal)
                                  : side.plan.has_value(),
               "the answer is refused for a different reason", all_of(first.refusal));
        return;
    }
    const Answered& answered = first.value;
    ++counts.answered;
    counts.accepted += answered.has_common ? 1U : 0U;
    demand(all_of(answered.warnings) == all_of(offer.value.warnings),
           "the warnings differ from the reader's", all_of(answered.diagnostics));
    check_messages(answered.rejections, text);
    const std::string shown = answered.log + all_of(answered.diagnostics);
    check_without_keys(shown + crypto_lines(answered.text), text);
    for (const std::string& key : answered.keys) {
        check_without_key(shown, base64(key));
    }

    const Strictness strictness =
        offer.value.warnings.empty() ? Strictness::STRICT : Strictness::LENIENT;
    const Result<Read> reread = read(answered.text, Role::ANSWER, strictness);
    demand(!reread.is_refused(), "the answer cannot be read", answered.text);
    demand(reread.value.kinds == offer.value.kinds, "the answer has different lines",
           answered.text);
    const std::string& local = side.policy.address.text();
    demand(!side.plan || text.find(local) != std::string::npos ||
               answered.text.find(local) == std::string::npos,
           "the answer has the local address", answered.text);
    const Result<Answered> again = answer(text, side, answered.text);
    demand(!again.is_refused() && again.value.changed == false,
           "the answer reads differently from its capability", answered.text + again.value.log);
    demand(again.value.text == answered.text, "a resumed side gives a different answer",
           again.value.text);
}

void check_properties(const std::string& text, Counts& counts) {
    const bool is_readable = check_reading(text, Role::ANSWER);
    demand(check_reading(text, Role::OFFER) == is_readable, "the role changes the refusal");
    counts.readable += is_readable ? 1U : 0U;
    counts.strict += read(text, Role::OFFER, Strictness::STRICT).is_refused() ? 0U : 1U;

    for (const char* const option :
         {"move 203.0.113.5 40000 7000", "move 2001:DB8::0:9 31999 6667",
          "move 10.0.0.1 32000 6666", "move 203.0.113.9 31990 6000 back",
          "move 203.0.113.5 32002 7000 merge", "move 203.0.113.5 40000 7000 strict", "answer"}) {
        Options options;
        options.add(option);
        check_move(text, options.journey, counts);
    }
    for (const std::vector<std::string>& lines : std::vector<std::vector<std::string>>{
             {},
             {"local 2001:db8::1"},
             {"codecs PCMU AMR-WB", "suites AES_CM_128_HMAC_SHA1_32", "no-fax"},
             {"local 192.168.250.1", "public 203.0.113.5 40000 7000"}}) {
        Options options;
        std::for_each(lines.begin(), lines.end(), [&](const auto& line) { options.add(line); });
        check_answer(text, options.side, counts);
    }
}

}  // namespace tools
