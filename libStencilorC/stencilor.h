#ifndef LIBSTENCILORC_STENCILOR_H
#define LIBSTENCILORC_STENCILOR_H

/** @file
 * Templates for C, and for every language that can call C.
 *
 *     #include <libStencilorC/stencilor.h>
 *     #include <stdio.h>
 *
 *     int main(void) {
 *         const size_t whole = STENCILOR_NUL_TERMINATED;
 *         stencilor_template *page = NULL;
 *         stencilor_value *values = NULL;
 *         stencilor_context *context = NULL;
 *         stencilor_result *result = NULL;
 *
 *         stencilor_template_parse("Hello, {{ name }}!\n", whole, "hello", whole, &page);
 *         stencilor_value_dictionary(&values);
 *         stencilor_value_set_text(values, "name", whole, "world", whole);
 *         stencilor_context_create(values, 0, &context, NULL);
 *         if (stencilor_template_render(page, context, NULL, &result) == STENCILOR_OK) {
 *             fputs(stencilor_result_text(result, NULL), stdout);
 *         }
 *         stencilor_result_free(result);
 *         stencilor_context_free(context);
 *         stencilor_value_free(values);
 *         stencilor_template_free(page);
 *         return 0;
 *     }
 *
 * These rules hold for every function:
 *
 * - Status: a function that can fail returns a `stencilor_status`. Nothing is thrown, printed or
 *   aborted; exhausted memory is a status, too.
 * - Handles: what a function makes, it stores where its last pointers point to, null where it
 *   failed. The caller frees it with the function named `_free`, in any order: no handle needs
 *   another one to stay. A null handle, or a null pointer to store one in, is
 *   `STENCILOR_INVALID_ARGUMENT`, and free functions ignore it, unless the function says otherwise.
 *   Functions without a status return 0, a null pointer or an empty text for it.
 * - Texts that are passed: UTF-8 and its size in bytes; `STENCILOR_NUL_TERMINATED` as the size
 *   measures it. They are copied where they are kept. A null pointer is an empty text of size 0.
 * - Texts that are returned: UTF-8, followed by a NUL, and never null. `size` receives the bytes
 *   before that NUL, unless it is null. They belong to the handle that they were read from, and are
 *   valid until it is freed or changed.
 * - Threads: functions may be called from every thread. A handle that is passed as a pointer to
 *   const may be used by many threads at once, and so may a source; every other one by one thread
 *   at a time.
 * - Callbacks: each has a payload of the caller and returns 0 to go on. Any other number ends the
 *   call around it with `STENCILOR_STOPPED`; `stencilor_result_stop_code` returns that number. A
 *   callback runs on the thread of the call. The texts that it receives are valid until it returns,
 *   and no NUL follows them. It may call every function here, but neither change nor free what the
 *   call around it uses, and it must return: not throw, jump or end its thread.
 * - Compatibility: while `stencilor_abi_version` stays the same, functions and enumerators are only
 *   added. Callers should expect numbers that they do not know.
 */

#include <stddef.h>
#include <stdint.h>

/** Marks what the library exports. Define `STENCILOR_C_STATIC` to use it as a static library. */
#if defined(STENCILOR_C_STATIC)
#define STENCILOR_API
#elif defined(_WIN32)
#if defined(STENCILOR_C_BUILDING)
#define STENCILOR_API
#else
#define STENCILOR_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define STENCILOR_API __attribute__((visibility("default")))
#else
#define STENCILOR_API
#endif

/** The version of the binary interface that this header describes. */
#define STENCILOR_ABI_VERSION 0

/** As the size of a text: its bytes up to the first NUL. */
#ifdef __cplusplus
#define STENCILOR_NUL_TERMINATED (static_cast<size_t>(-1))
#else
#define STENCILOR_NUL_TERMINATED ((size_t)-1)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** How a call ended. */
enum stencilor_status {
    STENCILOR_OK = 0,               /**< it did what was asked for */
    STENCILOR_STOPPED = 1,          /**< a callback ended it */
    STENCILOR_REJECTED = 2,         /**< the template is not well formed */
    STENCILOR_NOT_FOUND = 3,        /**< there is no such template or folder */
    STENCILOR_UNREADABLE = 4,       /**< there is such a template, and it cannot be read */
    STENCILOR_STEP_LIMIT = 5,       /**< `STENCILOR_LIMIT_STEPS` did not suffice */
    STENCILOR_OUTPUT_LIMIT = 6,     /**< `STENCILOR_LIMIT_OUTPUT_BYTES` did not suffice */
    STENCILOR_TEMPLATE_LIMIT = 7,   /**< `STENCILOR_LIMIT_TEMPLATE_BYTES` did not suffice */
    STENCILOR_DEPTH_LIMIT = 8,      /**< `STENCILOR_LIMIT_INCLUDE_DEPTH` did not suffice */
    STENCILOR_INVALID_ARGUMENT = 9, /**< a null handle, an unknown number, a refused value */
    STENCILOR_OUT_OF_MEMORY = 10,   /**< memory is exhausted */
    STENCILOR_TOO_LARGE = 11,       /**< a text over 4 GiB - 1 byte; values too deep or too many */
    STENCILOR_BAD_JSON = 12,        /**< a text is not JSON, or not JSON that becomes a value */
    STENCILOR_WRONG_KIND = 13,      /**< a value or a source of another kind is needed */
    STENCILOR_UNSUPPORTED = 14,     /**< the library was built without it */
    STENCILOR_INTERNAL_ERROR = 15   /**< a mistake of the library */
};

/** What a value is. */
enum stencilor_kind {
    STENCILOR_KIND_NULL = 0,      /**< nothing; a template does not find it */
    STENCILOR_KIND_BOOLEAN = 1,   /**< true or false */
    STENCILOR_KIND_TEXT = 2,      /**< a text; numbers are texts, too */
    STENCILOR_KIND_RAW_TEXT = 3,  /**< a text that is never escaped */
    STENCILOR_KIND_LIST = 4,      /**< values in their order */
    STENCILOR_KIND_DICTIONARY = 5 /**< values by their keys */
};

/** How a context is made; numbers to be added up. */
enum stencilor_context_flag {
    /** Elements of lists have `index` (from 1), `first` and `last`. */
    STENCILOR_CONTEXT_POSITIONS = 1,
    /** Numbers that JSON writes with a fraction or an exponent have the text that
     * `stencilor_value_double` would make, not their digits. */
    STENCILOR_CONTEXT_SHORT_NUMBERS = 2
};

/** What happens to values on their way into the text. */
enum stencilor_escape_kind {
    STENCILOR_ESCAPE_NONE = 0, /**< they are rendered as they are */
    STENCILOR_ESCAPE_HTML = 1, /**< for HTML text and quoted attributes */
    STENCILOR_ESCAPE_JSON = 2  /**< for JSON strings inside their quotation marks, also in HTML */
};

/** What a render may take, and what it took. */
enum stencilor_limit {
    STENCILOR_LIMIT_STEPS = 0,        /**< nodes visited, iterations, and 64 keys looked up each */
    STENCILOR_LIMIT_OUTPUT_BYTES = 1, /**< bytes rendered, before malformed ones become U+FFFD */
    STENCILOR_LIMIT_TEMPLATE_BYTES = 2, /**< bytes of included templates, each path once */
    STENCILOR_LIMIT_INCLUDE_DEPTH = 3,  /**< includes open inside each other: 1 to 100 */
    STENCILOR_LIMIT_MESSAGES = 4        /**< messages kept; further ones are only counted */
};

/** What a message is about. */
enum stencilor_message_kind {
    STENCILOR_MESSAGE_NONE = 0,                /**< there is no message */
    STENCILOR_MESSAGE_VALUE_NOT_FOUND = 1,     /**< a substitution's name is not in scope */
    STENCILOR_MESSAGE_VALUE_NOT_TEXT = 2,      /**< it is in scope and not a text */
    STENCILOR_MESSAGE_BOOLEAN_NOT_FOUND = 3,   /**< a condition's name is not in scope */
    STENCILOR_MESSAGE_NOT_BOOLEAN = 4,         /**< it is in scope and not a boolean */
    STENCILOR_MESSAGE_LIST_NOT_FOUND = 5,      /**< the name of a loop's list is not in scope */
    STENCILOR_MESSAGE_NOT_LIST = 6,            /**< it is in scope and not a list */
    STENCILOR_MESSAGE_TEMPLATE_NOT_FOUND = 7,  /**< there is no template at the path */
    STENCILOR_MESSAGE_TEMPLATE_UNREADABLE = 8, /**< there is one, and it cannot be read */
    STENCILOR_MESSAGE_TEMPLATE_REJECTED = 9,   /**< the template is not well formed */
    STENCILOR_MESSAGE_STEP_LIMIT = 10,     /**< the render ended; and so with the following ones */
    STENCILOR_MESSAGE_OUTPUT_LIMIT = 11,   /**< see `STENCILOR_OUTPUT_LIMIT` */
    STENCILOR_MESSAGE_TEMPLATE_LIMIT = 12, /**< see `STENCILOR_TEMPLATE_LIMIT` */
    STENCILOR_MESSAGE_DEPTH_LIMIT = 13,    /**< see `STENCILOR_DEPTH_LIMIT` */
    STENCILOR_MESSAGE_STOPPED = 14         /**< the poll function ended the render */
};

/** Why JSON or a context was refused. */
typedef struct stencilor_error stencilor_error;
/** A text that the library made. */
typedef struct stencilor_text stencilor_text;
/** Plain data: null, a boolean, a text, a list or a dictionary. */
typedef struct stencilor_value stencilor_value;
/** What templates are rendered with, made of a value once. It never changes. */
typedef struct stencilor_context stencilor_context;
/** A template that is parsed once. It never changes. */
typedef struct stencilor_template stencilor_template;
/** Where included templates come from. */
typedef struct stencilor_source stencilor_source;
/** How to render. */
typedef struct stencilor_options stencilor_options;
/** What a render produced. It never changes. */
typedef struct stencilor_result stencilor_result;
/** Something that could not be rendered, or the reason why a render ended. Belongs to a result or a
 * template. */
typedef struct stencilor_message stencilor_message;
/** A request for an included template; valid until the callback returns. */
typedef struct stencilor_request stencilor_request;
/** Where an escape function writes; valid until the callback returns. */
typedef struct stencilor_output stencilor_output;

/** Receives a piece of the text: never empty, at most 64 KiB, whole characters. */
typedef int (*stencilor_write_function)(void* payload, const char* text, size_t size);
/** Escapes a value: appends to `output` what is rendered in place of `text`. */
typedef int (*stencilor_escape_function)(void* payload, const char* text, size_t size,
                                         stencilor_output* output);
/** Asked after every 1,024 steps of a render. */
typedef int (*stencilor_poll_function)(void* payload);
/** Finds the template at `path`: answers with one of the functions `stencilor_request_set_...`, or
 * not at all where there is none. Each render asks once for each path. */
typedef int (*stencilor_find_function)(void* payload, const char* path, size_t path_size,
                                       stencilor_request* request);

/** @name The library
 * @{ */

/** The version of the library, such as `0.1.0`. */
STENCILOR_API const char* stencilor_version(void);

/** The version of its binary interface: the `STENCILOR_ABI_VERSION` that it was built with. */
STENCILOR_API int stencilor_abi_version(void);

/** Describes a status in English; an unknown one, too. */
STENCILOR_API const char* stencilor_status_text(int status);

/** @}
 * @name Errors and texts
 * @{ */

/** The status that the call returned. */
STENCILOR_API int stencilor_error_status(const stencilor_error* error);

/** What is wrong, in English, without its place. */
STENCILOR_API const char* stencilor_error_text(const stencilor_error* error, size_t* size);

/** Where it is wrong, in bytes from the beginning; 0 where the error is not in a text. */
STENCILOR_API size_t stencilor_error_offset(const stencilor_error* error);

/** The line, from 1; 0 where the error is not in a text. */
STENCILOR_API size_t stencilor_error_line(const stencilor_error* error);

/** The column in code points, from 1; 0 where the error is not in a text. */
STENCILOR_API size_t stencilor_error_column(const stencilor_error* error);

/** Frees an error. */
STENCILOR_API void stencilor_error_free(stencilor_error* error);

/** The text. */
STENCILOR_API const char* stencilor_text_data(const stencilor_text* text, size_t* size);

/** Frees a text. */
STENCILOR_API void stencilor_text_free(stencilor_text* text);

/** Escapes a text as a render does. `STENCILOR_INVALID_ARGUMENT` for an unknown kind.
 * @param kind a `stencilor_escape_kind`
 * @param text what is escaped
 * @param size its bytes
 * @param escaped receives the text */
STENCILOR_API int stencilor_escape(int kind, const char* text, size_t size,
                                   stencilor_text** escaped);

/** @}
 * @name Values
 * Lists and dictionaries nest at most 512 levels; beyond that, functions return
 * `STENCILOR_TOO_LARGE`. A function that fails changes nothing but the value that it takes.
 * @{ */

/** Makes null. */
STENCILOR_API int stencilor_value_null(stencilor_value** value);

/** Makes a boolean: false of 0, true of every other number. */
STENCILOR_API int stencilor_value_boolean(int is_true, stencilor_value** value);

/** Makes a text. */
STENCILOR_API int stencilor_value_text(const char* text, size_t size, stencilor_value** value);

/** Makes a text that no render escapes: for text that is known to be safe where it is inserted. */
STENCILOR_API int stencilor_value_raw_text(const char* text, size_t size, stencilor_value** value);

/** Makes the text of an integer, in decimal. */
STENCILOR_API int stencilor_value_integer(int64_t number, stencilor_value** value);

/** Makes the text of a number: the fewest digits that read back as the same number.
 * `STENCILOR_INVALID_ARGUMENT` where it is not finite. */
STENCILOR_API int stencilor_value_double(double number, stencilor_value** value);

/** Makes an empty list. */
STENCILOR_API int stencilor_value_list(stencilor_value** value);

/** Makes an empty dictionary. */
STENCILOR_API int stencilor_value_dictionary(stencilor_value** value);

/** Makes a value of a JSON text: UTF-8, with or without a byte-order mark. Numbers keep their
 * digits.
 * @param text the JSON text
 * @param size its bytes
 * @param value receives the value
 * @param error receives what is wrong and where, where that is known; may be null */
STENCILOR_API int stencilor_value_parse_json(const char* text, size_t size, stencilor_value** value,
                                             stencilor_error** error);

/** Copies a value with all that it holds. */
STENCILOR_API int stencilor_value_copy(const stencilor_value* value, stencilor_value** copy);

/** Returns the `stencilor_kind` of a value. */
STENCILOR_API int stencilor_value_kind(const stencilor_value* value);

/** Appends an item to a list; `STENCILOR_WRONG_KIND` for every other value.
 * @param list receives the item
 * @param item is taken: null afterwards, even where the call fails, and still the caller's to free.
 *   It may not be `list`. */
STENCILOR_API int stencilor_value_add(stencilor_value* list, stencilor_value* item);

/** Appends null to a list. */
STENCILOR_API int stencilor_value_add_null(stencilor_value* list);

/** Appends a boolean to a list. */
STENCILOR_API int stencilor_value_add_boolean(stencilor_value* list, int is_true);

/** Appends a text to a list. */
STENCILOR_API int stencilor_value_add_text(stencilor_value* list, const char* text, size_t size);

/** Appends a text that no render escapes to a list. */
STENCILOR_API int stencilor_value_add_raw_text(stencilor_value* list, const char* text,
                                               size_t size);

/** Appends the text of an integer to a list. */
STENCILOR_API int stencilor_value_add_integer(stencilor_value* list, int64_t number);

/** Appends the text of a number to a list. */
STENCILOR_API int stencilor_value_add_double(stencilor_value* list, double number);

/** Sets a member of a dictionary, in place of one with the same key; `STENCILOR_WRONG_KIND` for
 * every other value.
 * @param dictionary receives the member
 * @param key its key
 * @param key_size the bytes of the key
 * @param member is taken: null afterwards, even where the call fails, and still the caller's to
 * free. It may not be `dictionary`. */
STENCILOR_API int stencilor_value_set(stencilor_value* dictionary, const char* key, size_t key_size,
                                      stencilor_value* member);

/** Sets a member of a dictionary to null. */
STENCILOR_API int stencilor_value_set_null(stencilor_value* dictionary, const char* key,
                                           size_t key_size);

/** Sets a member of a dictionary to a boolean. */
STENCILOR_API int stencilor_value_set_boolean(stencilor_value* dictionary, const char* key,
                                              size_t key_size, int is_true);

/** Sets a member of a dictionary to a text. */
STENCILOR_API int stencilor_value_set_text(stencilor_value* dictionary, const char* key,
                                           size_t key_size, const char* text, size_t size);

/** Sets a member of a dictionary to a text that no render escapes. */
STENCILOR_API int stencilor_value_set_raw_text(stencilor_value* dictionary, const char* key,
                                               size_t key_size, const char* text, size_t size);

/** Sets a member of a dictionary to the text of an integer. */
STENCILOR_API int stencilor_value_set_integer(stencilor_value* dictionary, const char* key,
                                              size_t key_size, int64_t number);

/** Sets a member of a dictionary to the text of a number. */
STENCILOR_API int stencilor_value_set_double(stencilor_value* dictionary, const char* key,
                                             size_t key_size, double number);

/** Frees a value with all that it holds. */
STENCILOR_API void stencilor_value_free(stencilor_value* value);

/** @}
 * @name Contexts
 * @{ */

/** Makes a context of a dictionary, which is copied. `STENCILOR_WRONG_KIND` for every other value,
 * `STENCILOR_INVALID_ARGUMENT` where a `$boolean` is not a boolean or a flag is unknown or for
 * JSON, `STENCILOR_TOO_LARGE` where dotted names would take more than 512 MiB.
 * @param value the dictionary
 * @param flags of `stencilor_context_flag`, added up; 0 for none
 * @param context receives the context
 * @param error receives why the value was refused, where that is the reason; may be null */
STENCILOR_API int stencilor_context_create(const stencilor_value* value, int flags,
                                           stencilor_context** context, stencilor_error** error);

/** Makes a context of the JSON text of an object in one call, as `stencilor_value_parse_json` and
 * `stencilor_context_create` do in two. For languages that write JSON faster than they call.
 * @param text the JSON text
 * @param size its bytes
 * @param flags of `stencilor_context_flag`, added up; 0 for none
 * @param raw_mark strings that begin with it become raw texts of what follows it; it should be one
 *   that no other string begins with; empty for none
 * @param raw_mark_size its bytes
 * @param context receives the context
 * @param error receives what is wrong and where, where that is known; may be null */
STENCILOR_API int stencilor_context_parse_json(const char* text, size_t size, int flags,
                                               const char* raw_mark, size_t raw_mark_size,
                                               stencilor_context** context,
                                               stencilor_error** error);

/** Frees a context. */
STENCILOR_API void stencilor_context_free(stencilor_context* context);

/** @}
 * @name Templates
 * @{ */

/** Parses a template. `STENCILOR_REJECTED` where it is not well formed; there is a template then,
 * too, which `stencilor_template_fault` explains.
 * @param text the template, which ends at its first NUL
 * @param size its bytes
 * @param name what messages call it, such as a path; may be empty
 * @param name_size the bytes of the name
 * @param parsed receives the template */
STENCILOR_API int stencilor_template_parse(const char* text, size_t size, const char* name,
                                           size_t name_size, stencilor_template** parsed);

/** The name that the template was given. */
STENCILOR_API const char* stencilor_template_name(const stencilor_template* parsed, size_t* size);

/** The text that the template was made of. */
STENCILOR_API const char* stencilor_template_text(const stencilor_template* parsed, size_t* size);

/** Returns why the template is not well formed; it belongs to the template. Null where it is. */
STENCILOR_API const stencilor_message* stencilor_template_fault(const stencilor_template* parsed);

/** Renders a template. Statuses up to `STENCILOR_DEPTH_LIMIT` come with a result.
 * @param parsed the template
 * @param context its values
 * @param options how to render; null for the defaults
 * @param result receives the text and the messages; may be null */
STENCILOR_API int stencilor_template_render(const stencilor_template* parsed,
                                            const stencilor_context* context,
                                            const stencilor_options* options,
                                            stencilor_result** result);

/** Renders a template piece by piece. Where the status is not `STENCILOR_OK`, what was written is a
 * beginning of the text. The text of the result is empty.
 * @param parsed the template
 * @param context its values
 * @param write receives the pieces
 * @param payload what `write` is called with
 * @param options how to render; null for the defaults
 * @param result receives the messages; may be null */
STENCILOR_API int stencilor_template_render_to(const stencilor_template* parsed,
                                               const stencilor_context* context,
                                               stencilor_write_function write, void* payload,
                                               const stencilor_options* options,
                                               stencilor_result** result);

/** Renders the template at a path of the source in the options, whose bytes count as those of an
 * included one.
 * @param path as an include tag would write it
 * @param path_size its bytes
 * @param context the values
 * @param options how to render, with a source
 * @param result receives the text and the messages; may be null */
STENCILOR_API int stencilor_render_path(const char* path, size_t path_size,
                                        const stencilor_context* context,
                                        const stencilor_options* options,
                                        stencilor_result** result);

/** Frees a template. */
STENCILOR_API void stencilor_template_free(stencilor_template* parsed);

/** @}
 * @name Options
 * @{ */

/** Makes options: nothing is escaped, includes find nothing, 100 of them may be open inside each
 * other, and 1,000 messages are kept. */
STENCILOR_API int stencilor_options_create(stencilor_options** options);

/** Escapes values in one of the ways of a `stencilor_escape_kind`. */
STENCILOR_API int stencilor_options_set_escape(stencilor_options* options, int kind);

/** Escapes values by a function, which receives each up to its first NUL.
 * @param options what is set
 * @param escape the function; many renders at once may call it
 * @param payload what `escape` is called with */
STENCILOR_API int stencilor_options_set_escape_function(stencilor_options* options,
                                                        stencilor_escape_function escape,
                                                        void* payload);

/** Sets a limit.
 * @param options what is set
 * @param limit a `stencilor_limit`
 * @param value 0 for no limit; of the include depth, every number other than 1 to 100 means 100 */
STENCILOR_API int stencilor_options_set_limit(stencilor_options* options, int limit,
                                              uint64_t value);

/** Sets the function that is asked whether to go on.
 * @param options what is set
 * @param poll the function; null for none; many renders at once may call it
 * @param payload what `poll` is called with */
STENCILOR_API int stencilor_options_set_poll(stencilor_options* options,
                                             stencilor_poll_function poll, void* payload);

/** Sets where included templates come from. The options keep the source, also after it was freed.
 * @param options what is set
 * @param source the source; null for none, so that includes find nothing */
STENCILOR_API int stencilor_options_set_source(stencilor_options* options,
                                               stencilor_source* source);

/** Frees options. */
STENCILOR_API void stencilor_options_free(stencilor_options* options);

/** @}
 * @name Sources
 * Many renders at once may use a source.
 * @{ */

/** Makes a source that keeps templates in memory. */
STENCILOR_API int stencilor_source_memory(stencilor_source** source);

/** Adds a template to a source in memory, or replaces the one at its path; also while renders run.
 * `STENCILOR_WRONG_KIND` for every other source.
 * @param source receives the template
 * @param path as include tags write it
 * @param path_size its bytes
 * @param text the template, parsed here, once; it need not be well formed
 * @param size its bytes */
STENCILOR_API int stencilor_source_add(stencilor_source* source, const char* path, size_t path_size,
                                       const char* text, size_t size);

/** Makes a source of the files below a folder. Nothing outside it can be included, and files that
 * change are read again. `STENCILOR_NOT_FOUND` where it is not a folder that can be entered.
 * @param path the folder, absolute or relative to the working directory of this moment
 * @param size the bytes of the path
 * @param source receives the source */
STENCILOR_API int stencilor_source_folder(const char* path, size_t size, stencilor_source** source);

/** Makes a source of a function.
 * @param find the function; many renders at once may call it
 * @param payload what `find` is called with
 * @param source receives the source */
STENCILOR_API int stencilor_source_callback(stencilor_find_function find, void* payload,
                                            stencilor_source** source);

/** Finds a template of a source and parses it. `STENCILOR_REJECTED` where it is not well formed;
 * there is a template then, too. `STENCILOR_NOT_FOUND` and `STENCILOR_UNREADABLE` where there is
 * none; `STENCILOR_STOPPED` where a callback ended the call.
 * @param source the source
 * @param path as an include tag would write it
 * @param path_size its bytes
 * @param parsed receives the template */
STENCILOR_API int stencilor_source_find(stencilor_source* source, const char* path,
                                        size_t path_size, stencilor_template** parsed);

/** Returns how many bytes the template may have; a longer one ends the render. */
STENCILOR_API uint64_t stencilor_request_max_size(const stencilor_request* request);

/** Answers with the text of a template, which is parsed for this render. */
STENCILOR_API int stencilor_request_set_text(stencilor_request* request, const char* text,
                                             size_t size);

/** Answers with a template that was parsed before. It may be freed afterwards. */
STENCILOR_API int stencilor_request_set_template(stencilor_request* request,
                                                 const stencilor_template* parsed);

/** Answers that there is a template, and that it cannot be read. */
STENCILOR_API int stencilor_request_set_unreadable(stencilor_request* request);

/** Appends to what is rendered in place of a value. Where it fails, so does the render. */
STENCILOR_API int stencilor_output_append(stencilor_output* output, const char* text, size_t size);

/** Frees a source. Options that keep it can still be used. */
STENCILOR_API void stencilor_source_free(stencilor_source* source);

/** @}
 * @name Results
 * @{ */

/** The status that the call returned. */
STENCILOR_API int stencilor_result_status(const stencilor_result* result);

/** What the callback returned that ended the render; 0 where none did. */
STENCILOR_API int stencilor_result_stop_code(const stencilor_result* result);

/** The text, always valid UTF-8; empty unless the status is `STENCILOR_OK`. */
STENCILOR_API const char* stencilor_result_text(const stencilor_result* result, size_t* size);

/** Returns what the render took; of messages, all of them, kept or not. 0 where a callback other
 * than the poll function ended it.
 * @param result the result
 * @param limit a `stencilor_limit` */
STENCILOR_API uint64_t stencilor_result_usage(const stencilor_result* result, int limit);

/** Counts the messages that were kept; none where a callback other than the poll function ended the
 * render. */
STENCILOR_API size_t stencilor_result_message_count(const stencilor_result* result);

/** Returns a message, in the order of the text; it belongs to the result. Null past the last one.
 */
STENCILOR_API const stencilor_message* stencilor_result_message(const stencilor_result* result,
                                                                size_t index);

/** Frees a result with its messages. */
STENCILOR_API void stencilor_result_free(stencilor_result* result);

/** @}
 * @name Messages
 * @{ */

/** Returns the `stencilor_message_kind`. */
STENCILOR_API int stencilor_message_kind(const stencilor_message* message);

/** The message in English, without its place; one line. Made when it is asked for first, and empty
 * where memory is exhausted then. */
STENCILOR_API const char* stencilor_message_text(const stencilor_message* message, size_t* size);

/** The name or path in the tag; empty where there is none. */
STENCILOR_API const char* stencilor_message_name(const stencilor_message* message, size_t* size);

/** The name of the template that the place is in. */
STENCILOR_API const char* stencilor_message_template_name(const stencilor_message* message,
                                                          size_t* size);

/** The line, from 1; 0 where there is no place. */
STENCILOR_API size_t stencilor_message_line(const stencilor_message* message);

/** The column in code points, from 1; 0 where there is no place. */
STENCILOR_API size_t stencilor_message_column(const stencilor_message* message);

/** Where the name, the path or the fault begins, in bytes from the beginning of the template. */
STENCILOR_API size_t stencilor_message_begin(const stencilor_message* message);

/** Where it ends: the first byte after it. */
STENCILOR_API size_t stencilor_message_end(const stencilor_message* message);

/** Counts the includes that were open around the place. */
STENCILOR_API size_t stencilor_message_include_count(const stencilor_message* message);

/** The template that holds an include tag around the place; `index` 0 is the innermost one. */
STENCILOR_API const char* stencilor_message_include_template_name(const stencilor_message* message,
                                                                  size_t index, size_t* size);

/** The line of the path in that tag, from 1. */
STENCILOR_API size_t stencilor_message_include_line(const stencilor_message* message, size_t index);

/** The column of the path in that tag in code points, from 1. */
STENCILOR_API size_t stencilor_message_include_column(const stencilor_message* message,
                                                      size_t index);

/** Where the path in that tag begins, in bytes. */
STENCILOR_API size_t stencilor_message_include_begin(const stencilor_message* message,
                                                     size_t index);

/** Where the path in that tag ends, in bytes. */
STENCILOR_API size_t stencilor_message_include_end(const stencilor_message* message, size_t index);

/** @}
 * @name Analysis
 * A callback of the source that ends a call leaves no number to read.
 * @{ */

/** Finds what is wrong with a template and all that it includes, as `stencilor check --format json`
 * does. `STENCILOR_OK` whatever is found.
 * @param parsed the template, well formed or not
 * @param source where included templates come from; null for none, so that each is missing
 * @param context the values that names are looked up in; null for none, so that they are not
 * @param json receives a JSON document: `{"findings": [...]}` */
STENCILOR_API int stencilor_check(const stencilor_template* parsed, stencilor_source* source,
                                  const stencilor_context* context, stencilor_text** json);

/** Lists the names that a template and all that it includes ask a context for, as `stencilor names
 * --format json` does. `STENCILOR_REJECTED` and no text for a template that is not well formed.
 * @param parsed the template
 * @param source where included templates come from; null for none, so that each is missing
 * @param json receives a JSON document: `{"names": [...]}` */
STENCILOR_API int stencilor_names(const stencilor_template* parsed, stencilor_source* source,
                                  stencilor_text** json);

/** Lists the nodes of a template's syntax tree, as `stencilor tree --format json` does.
 * `STENCILOR_REJECTED` and no text for a template that is not well formed.
 * @param parsed the template
 * @param json receives a JSON document: `{"files": [{"nodes": [...]}]}` */
STENCILOR_API int stencilor_tree(const stencilor_template* parsed, stencilor_text** json);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
