#include <libStencilor/context/build_context.h>
#include <libStencilor/context/context_access.h>
#include <libStencilor/value/value_access.h>
#include <libStencilorC/border.h>
#include <libStencilorC/handles.h>

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

// What JavaScript passes or reads in one call instead of many.

using namespace kel::Stencilor;
using namespace kel::Stencilor::internal;

namespace {

/// The first byte of a value. The rest of a string is its size and its bytes; of a list, its items
/// and `End`; of a dictionary, its members, each a key and a value, and `End`.
enum class Tag : unsigned char { Null, False, True, Text, RawText, List, Dictionary, End };

/// Reads values that `values.js` wrote, so nothing in them is malformed.
class ValueReader {
  public:
    ValueReader(const unsigned char* bytes, std::size_t size, const ContextOptions& options)
        : next_(bytes), end_(bytes + size), builder_(options) {}

    /// Reads the root of a context. Throws if it is not a dictionary.
    std::unique_ptr<ContextBase> readRoot() {
        failUnlessOk(readTag() == Tag::Dictionary ? STENCILOR_OK : STENCILOR_WRONG_KIND);
        return readDictionary();
    }

  private:
    using Made = std::unique_ptr<ContextBase>;

    unsigned char readByte() {
        assert(next_ < end_);
        return *next_++;
    }

    Tag readTag() { return Tag{readByte()}; }

    /// Seven bits per byte, lowest first; the high bit says that more follow.
    std::size_t readSize() {
        std::size_t size = 0;
        for (unsigned int shift = 0;; shift += 7) {
            const unsigned char byte = readByte();
            size |= std::size_t{byte & 0x7Fu} << shift;
            if (byte < 0x80) {
                return size;
            }
        }
    }

    kel::String readText() {
        const std::size_t size = readSize();
        const std::string_view text(reinterpret_cast<const char*>(next_), size);
        next_ += size;
        assert(next_ <= end_);
        return kel::String(text);
    }

    Made readList() {
        auto list = std::make_unique<ContextIterable>();
        for (Tag tag = readTag(); tag != Tag::End; tag = readTag()) {
            Made element = read(tag);
            if (tag != Tag::Dictionary) {
                element = builder_.wrapItem(std::move(element));
            }
            list->add(element.release());
        }
        builder_.addPositions(*list);
        return list;
    }

    Made readDictionary() {
        Made dictionary = std::make_unique<ContextDictionary>();
        for (Tag tag = readTag(); tag != Tag::End; tag = readTag()) {
            const kel::String key = readText();
            tag = readTag();
            Made member = read(tag);
            if (key == booleanKey_) {
                context_builder::checkBoolean(tag == Tag::True || tag == Tag::False);
                context_access::moveChildren(*dictionary, *member);
                dictionary = std::move(member);
                continue;
            }
            ContextBase*& entry = (*dictionary)[key];
            delete std::exchange(entry,
                                 member.release()); // different keys may be equal in UTF-8
        }
        builder_.addDottedNames(*dictionary);
        return dictionary;
    }

    /// Recursion is bounded: `values.js` limits the depth of values.
    Made read(Tag tag) { // NOLINT(misc-no-recursion)
        switch (tag) {
        case Tag::False:
        case Tag::True:
            return std::make_unique<ContextBoolean>(tag == Tag::True);
        case Tag::Text:
            return std::make_unique<ContextString>(readText());
        case Tag::RawText:
            return std::make_unique<ContextRawString>(readText());
        case Tag::List:
            return readList();
        case Tag::Dictionary:
            return readDictionary();
        default:
            return nullptr;
        }
    }

    const unsigned char* next_;
    [[maybe_unused]] const unsigned char* end_; // for assertions
    context_builder builder_;
    const kel::String booleanKey_ = context_builder::booleanKey;
};

} // namespace

#define STENCILOR_WEB_IMPORT(name)                                                                 \
    extern "C" __attribute__((import_module("host"), import_name(#name)))
#define STENCILOR_WEB_EXPORT(name) extern "C" __attribute__((export_name(#name)))

// The JavaScript functions that callbacks call, with the payload that was passed in.
STENCILOR_WEB_IMPORT(find)
int hostFind(void* payload, const char* path, std::size_t size, stencilor_request* request);
STENCILOR_WEB_IMPORT(escape)
int hostEscape(void* payload, const char* text, std::size_t size, stencilor_output* output);
STENCILOR_WEB_IMPORT(poll) int hostPoll(void* payload);

/// Creates a context from values, as `stencilor_context_create` does from one value.
STENCILOR_WEB_EXPORT(stencilor_web_context)
int makeContext(const unsigned char* bytes, std::size_t size, int flags,
                stencilor_context** context, stencilor_error** error) {
    return guarded(
        [&] {
            stencilor_context*& made = placeOf(context);
            const bool positions = (flags & STENCILOR_CONTEXT_POSITIONS) != 0;
            ValueReader reader(bytes, size, {.positions = positions});
            made = new stencilor_context{value_access::makeContext(reader.readRoot())};
        },
        error);
}

/// Stores what a render produced, as numbers of JavaScript: the address and the size of the
/// text, the number of messages, and the usage in the order of the limits.
STENCILOR_WEB_EXPORT(stencilor_web_result)
void storeResult(const stencilor_result* result, double* numbers) {
    std::size_t size = 0;
    const char* const text = stencilor_result_text(result, &size);
    *numbers++ = static_cast<double>(reinterpret_cast<std::uintptr_t>(text));
    *numbers++ = static_cast<double>(size);
    *numbers++ = static_cast<double>(stencilor_result_message_count(result));
    for (int limit = STENCILOR_LIMIT_STEPS; limit <= STENCILOR_LIMIT_MESSAGES; ++limit) {
        *numbers++ = static_cast<double>(stencilor_result_usage(result, limit));
    }
}

/// Creates a source that calls `find`.
STENCILOR_WEB_EXPORT(stencilor_web_source)
int makeSource(void* payload, stencilor_source** source) {
    return stencilor_source_callback(&hostFind, payload, source);
}

/// Sets `escape` as the function that escapes values.
STENCILOR_WEB_EXPORT(stencilor_web_set_escape)
int setEscape(stencilor_options* options, void* payload) {
    return stencilor_options_set_escape_function(options, &hostEscape, payload);
}

/// Sets `poll` as the function that decides whether to continue.
STENCILOR_WEB_EXPORT(stencilor_web_set_poll)
int setPoll(stencilor_options* options, void* payload) {
    return stencilor_options_set_poll(options, &hostPoll, payload);
}

// These replace functions of the C and C++ libraries. There is no environment to read.

extern "C" char* getenv(const char*) {
    return nullptr;
}

// These describe fatal errors, and would pull in all number formatting. They are called only if the
// engine has a bug.

extern "C" void abort_message(const char*, ...) {
    __builtin_trap();
}

extern "C" int snprintf(char*, std::size_t, const char*, ...) {
    __builtin_trap();
}
