#ifndef LIBSTENCILORC_STENCILOR_H
#define LIBSTENCILORC_STENCILOR_H

/** @file
 * Text templates for C, and for any language that can call C.
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
 * These rules apply to every function:
 *
 * - Status: a function that can fail returns a `stencilor_status`. The library never throws, prints
 *   or aborts; running out of memory is a status, too.
 * - Handles: a function stores the handles that it creates through its last pointer arguments, and
 *   null on failure. The caller frees each with the matching `_free` function, in any order: no
 *   handle depends on another. Unless documented otherwise, a null handle, or a null pointer to
 *   store a handle in, causes `STENCILOR_INVALID_ARGUMENT`. Functions without a status then return
 *   0, a null pointer or an empty string, and free functions do nothing.
 * - Strings passed in: UTF-8, with the size in bytes. If the size is `STENCILOR_NUL_TERMINATED`,
 *   the string ends at its first NUL. The library copies what it keeps. A null pointer of size 0 is
 *   an empty string.
 * - Strings returned: followed by a NUL, and never null. `size`, unless null, receives the number
 *   of bytes before that NUL. Results and JSON are valid UTF-8; a string that was passed in is
 *   returned with its malformed bytes. A string belongs to the handle that it was read from, and is
 *   valid until that handle is freed or changed.
 * - Threads: functions may be called from any thread. Several threads may use a source, or a handle
 *   passed as a pointer to const, at once. Any other handle may be used by one thread at a time.
 * - Callbacks: each receives a payload from the caller, and returns 0 to continue. Any other number
 *   ends the enclosing call with `STENCILOR_STOPPED`; `stencilor_result_stop_code` returns that
 *   number. A callback runs on the thread of the enclosing call. The strings that it receives are
 *   valid until it returns, and are not followed by a NUL. It may call any function here, but must
 *   not change or free anything that the enclosing call uses. It must return, and must not throw,
 *   jump out or end its thread.
 * - Compatibility: as long as `stencilor_abi_version` stays the same, functions and enumerators are
 *   only added. Callers should expect numbers that they do not know.
 */

#include <stddef.h>
#include <stdint.h>

/** Marks exported functions. Define `STENCILOR_C_STATIC` to use the static library. */
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

/** As the size of a string: the string ends at its first NUL. */
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
    STENCILOR_OK = 0,               /**< success */
    STENCILOR_STOPPED = 1,          /**< a callback ended the call */
    STENCILOR_REJECTED = 2,         /**< the template is not well formed */
    STENCILOR_NOT_FOUND = 3,        /**< no such template or folder */
    STENCILOR_UNREADABLE = 4,       /**< the template exists but cannot be read */
    STENCILOR_STEP_LIMIT = 5,       /**< `STENCILOR_LIMIT_STEPS` was reached */
    STENCILOR_OUTPUT_LIMIT = 6,     /**< `STENCILOR_LIMIT_OUTPUT_BYTES` was reached */
    STENCILOR_TEMPLATE_LIMIT = 7,   /**< `STENCILOR_LIMIT_TEMPLATE_BYTES` was reached */
    STENCILOR_DEPTH_LIMIT = 8,      /**< `STENCILOR_LIMIT_INCLUDE_DEPTH` was reached */
    STENCILOR_INVALID_ARGUMENT = 9, /**< a null handle, an unknown number, a rejected value */
    STENCILOR_OUT_OF_MEMORY = 10,   /**< out of memory */
    STENCILOR_TOO_LARGE = 11,       /**< a string of 4 GiB or more; values too deep or too many */
    STENCILOR_BAD_JSON = 12,        /**< text is not JSON, or its JSON cannot become a value */
    STENCILOR_WRONG_KIND = 13,      /**< a value or source is of the wrong kind */
    STENCILOR_UNSUPPORTED = 14,     /**< not included in this build of the library */
    STENCILOR_INTERNAL_ERROR = 15   /**< a bug in the library */
};

/** The kind of a value. */
enum stencilor_kind {
    STENCILOR_KIND_NULL = 0,      /**< nothing; templates treat it as missing */
    STENCILOR_KIND_BOOLEAN = 1,   /**< true or false */
    STENCILOR_KIND_TEXT = 2,      /**< a string; numbers are also strings */
    STENCILOR_KIND_RAW_TEXT = 3,  /**< a string that is never escaped */
    STENCILOR_KIND_LIST = 4,      /**< values in order */
    STENCILOR_KIND_DICTIONARY = 5 /**< values by key */
};

/** How to create a context. Add flags to combine them. */
enum stencilor_context_flag {
    /** List elements have `index` (from 1), `first` and `last`. */
    STENCILOR_CONTEXT_POSITIONS = 1,
    /** JSON numbers with a fraction or an exponent become the text that `stencilor_value_double`
     * would make, instead of keeping their digits. */
    STENCILOR_CONTEXT_SHORT_NUMBERS = 2
};

/** How values are escaped. */
enum stencilor_escape_kind {
    STENCILOR_ESCAPE_NONE = 0, /**< not escaped */
    STENCILOR_ESCAPE_HTML = 1, /**< for HTML text and quoted attributes */
    STENCILOR_ESCAPE_JSON = 2  /**< for the inside of JSON strings, also in HTML */
};

/** The limits of a render, and what it used. */
enum stencilor_limit {
    STENCILOR_LIMIT_STEPS = 0,        /**< nodes visited, iterations, and every 64 keys looked up */
    STENCILOR_LIMIT_OUTPUT_BYTES = 1, /**< bytes rendered, before malformed ones become U+FFFD */
    STENCILOR_LIMIT_TEMPLATE_BYTES = 2, /**< bytes of included templates, each path once */
    STENCILOR_LIMIT_INCLUDE_DEPTH = 3,  /**< nested includes: 1 to 100 */
    STENCILOR_LIMIT_MESSAGES = 4        /**< messages kept; further ones are only counted */
};

/** What a message is about. */
enum stencilor_message_kind {
    STENCILOR_MESSAGE_NONE = 0,                /**< there is no message */
    STENCILOR_MESSAGE_VALUE_NOT_FOUND = 1,     /**< a substitution's name is not in scope */
    STENCILOR_MESSAGE_VALUE_NOT_TEXT = 2,      /**< it is in scope, but not a string */
    STENCILOR_MESSAGE_BOOLEAN_NOT_FOUND = 3,   /**< a condition's name is not in scope */
    STENCILOR_MESSAGE_NOT_BOOLEAN = 4,         /**< it is in scope, but not a boolean */
    STENCILOR_MESSAGE_LIST_NOT_FOUND = 5,      /**< the name of a loop's list is not in scope */
    STENCILOR_MESSAGE_NOT_LIST = 6,            /**< it is in scope, but not a list */
    STENCILOR_MESSAGE_TEMPLATE_NOT_FOUND = 7,  /**< there is no template at the path */
    STENCILOR_MESSAGE_TEMPLATE_UNREADABLE = 8, /**< there is one, but it cannot be read */
    STENCILOR_MESSAGE_TEMPLATE_REJECTED = 9,   /**< the template is not well formed */
    STENCILOR_MESSAGE_STEP_LIMIT = 10,         /**< ended the render, as do those below */
    STENCILOR_MESSAGE_OUTPUT_LIMIT = 11,       /**< see `STENCILOR_OUTPUT_LIMIT` */
    STENCILOR_MESSAGE_TEMPLATE_LIMIT = 12,     /**< see `STENCILOR_TEMPLATE_LIMIT` */
    STENCILOR_MESSAGE_DEPTH_LIMIT = 13,        /**< see `STENCILOR_DEPTH_LIMIT` */
    STENCILOR_MESSAGE_STOPPED = 14             /**< the poll function ended the render */
};

/** Why JSON or a context was rejected. */
typedef struct stencilor_error stencilor_error;
/** A string that the library created. */
typedef struct stencilor_text stencilor_text;
/** Plain data: null, a boolean, a string, a list or a dictionary. */
typedef struct stencilor_value stencilor_value;
/** The values that templates are rendered with. It never changes. */
typedef struct stencilor_context stencilor_context;
/** A template that is parsed once. It never changes. */
typedef struct stencilor_template stencilor_template;
/** Where included templates come from. */
typedef struct stencilor_source stencilor_source;
/** How to render. */
typedef struct stencilor_options stencilor_options;
/** What a render produced. It never changes. */
typedef struct stencilor_result stencilor_result;
/** Something that could not be rendered, or the reason that a render ended. It belongs to a result
 * or a template. */
typedef struct stencilor_message stencilor_message;
/** A request for an included template; valid until the callback returns. */
typedef struct stencilor_request stencilor_request;
/** Where an escape function writes; valid until the callback returns. */
typedef struct stencilor_output stencilor_output;

/** Receives a piece of the text: never empty, at most 64 KiB, whole characters. */
typedef int (*stencilor_write_function)(void* payload, const char* text, size_t size);
/** Escapes a value: appends to `output` what to render in place of `text`. */
typedef int (*stencilor_escape_function)(void* payload, const char* text, size_t size,
                                         stencilor_output* output);
/** Called after every 1,024 steps of a render. */
typedef int (*stencilor_poll_function)(void* payload);
/** Finds the template at `path`: answers with one of the functions `stencilor_request_set_...`, or
 * does not answer if there is no template. Each render asks once per path. */
typedef int (*stencilor_find_function)(void* payload, const char* path, size_t path_size,
                                       stencilor_request* request);

/** @name The library
 * @{ */

/** The version of the library, such as `0.1.0`. */
STENCILOR_API const char* stencilor_version(void);

/** The version of the library's binary interface: the `STENCILOR_ABI_VERSION` it was built with. */
STENCILOR_API int stencilor_abi_version(void);

/** Describes a status in English, even an unknown one. */
STENCILOR_API const char* stencilor_status_text(int status);

/** @}
 * @name Errors and strings
 * @{ */

/** The status that the call returned. */
STENCILOR_API int stencilor_error_status(const stencilor_error* error);

/** The reason in English, without its location. */
STENCILOR_API const char* stencilor_error_text(const stencilor_error* error, size_t* size);

/** The byte offset of the error; 0 if the error is not in JSON text. */
STENCILOR_API size_t stencilor_error_offset(const stencilor_error* error);

/** The line, from 1; 0 if the error is not in JSON text. */
STENCILOR_API size_t stencilor_error_line(const stencilor_error* error);

/** The column in code points, from 1; 0 if the error is not in JSON text. */
STENCILOR_API size_t stencilor_error_column(const stencilor_error* error);

/** Frees an error. */
STENCILOR_API void stencilor_error_free(stencilor_error* error);

/** The text. */
STENCILOR_API const char* stencilor_text_data(const stencilor_text* text, size_t* size);

/** Frees a string. */
STENCILOR_API void stencilor_text_free(stencilor_text* text);

/** Escapes a string as a render does. Returns `STENCILOR_INVALID_ARGUMENT` for an unknown kind.
 * @param kind a `stencilor_escape_kind`
 * @param text the text to escape
 * @param size the bytes of the text
 * @param escaped receives the text */
STENCILOR_API int stencilor_escape(int kind, const char* text, size_t size,
                                   stencilor_text** escaped);

/** @}
 * @name Values
 * Lists and dictionaries nest at most 512 levels; beyond that, functions return
 * `STENCILOR_TOO_LARGE`. A function that fails changes nothing but the value that it takes over.
 * @{ */

/** Creates null. */
STENCILOR_API int stencilor_value_null(stencilor_value** value);

/** Creates a boolean: false for 0, true for any other number. */
STENCILOR_API int stencilor_value_boolean(int is_true, stencilor_value** value);

/** Creates a string. */
STENCILOR_API int stencilor_value_text(const char* text, size_t size, stencilor_value** value);

/** Creates a string that renders never escape: for text known to be safe where it is inserted. */
STENCILOR_API int stencilor_value_raw_text(const char* text, size_t size, stencilor_value** value);

/** Creates a string from an integer, in decimal. */
STENCILOR_API int stencilor_value_integer(int64_t number, stencilor_value** value);

/** Creates a string from a number: the fewest digits that read back as the same number. Returns
 * `STENCILOR_INVALID_ARGUMENT` if the number is not finite. */
STENCILOR_API int stencilor_value_double(double number, stencilor_value** value);

/** Creates an empty list. */
STENCILOR_API int stencilor_value_list(stencilor_value** value);

/** Creates an empty dictionary. */
STENCILOR_API int stencilor_value_dictionary(stencilor_value** value);

/** Creates a value from JSON text: UTF-8, with or without a byte-order mark. Numbers keep their
 * digits.
 * @param text the JSON text
 * @param size the bytes of the text
 * @param value receives the value
 * @param error receives the reason and, if known, the location; may be null */
STENCILOR_API int stencilor_value_parse_json(const char* text, size_t size, stencilor_value** value,
                                             stencilor_error** error);

/** Copies a value and everything that it holds. */
STENCILOR_API int stencilor_value_copy(const stencilor_value* value, stencilor_value** copy);

/** Returns the `stencilor_kind` of a value. */
STENCILOR_API int stencilor_value_kind(const stencilor_value* value);

/** Appends an item to a list; returns `STENCILOR_WRONG_KIND` for any other value.
 * @param list the list
 * @param item the item, whose content is moved: it is null afterwards, even if the call fails, and
 *   the caller still frees it; it must not be `list` */
STENCILOR_API int stencilor_value_add(stencilor_value* list, stencilor_value* item);

/** Appends null to a list. */
STENCILOR_API int stencilor_value_add_null(stencilor_value* list);

/** Appends a boolean to a list. */
STENCILOR_API int stencilor_value_add_boolean(stencilor_value* list, int is_true);

/** Appends a string to a list. */
STENCILOR_API int stencilor_value_add_text(stencilor_value* list, const char* text, size_t size);

/** Appends a string that renders never escape to a list. */
STENCILOR_API int stencilor_value_add_raw_text(stencilor_value* list, const char* text,
                                               size_t size);

/** Appends an integer to a list, as a string. */
STENCILOR_API int stencilor_value_add_integer(stencilor_value* list, int64_t number);

/** Appends a number to a list, as a string. */
STENCILOR_API int stencilor_value_add_double(stencilor_value* list, double number);

/** Sets a member of a dictionary, replacing any with the same key; returns `STENCILOR_WRONG_KIND`
 * for any other value.
 * @param dictionary the dictionary
 * @param key the member's key
 * @param key_size the bytes of the key
 * @param member the member, whose content is moved: it is null afterwards, even if the call fails,
 *   and the caller still frees it; it must not be `dictionary` */
STENCILOR_API int stencilor_value_set(stencilor_value* dictionary, const char* key, size_t key_size,
                                      stencilor_value* member);

/** Sets a member of a dictionary to null. */
STENCILOR_API int stencilor_value_set_null(stencilor_value* dictionary, const char* key,
                                           size_t key_size);

/** Sets a member of a dictionary to a boolean. */
STENCILOR_API int stencilor_value_set_boolean(stencilor_value* dictionary, const char* key,
                                              size_t key_size, int is_true);

/** Sets a member of a dictionary to a string. */
STENCILOR_API int stencilor_value_set_text(stencilor_value* dictionary, const char* key,
                                           size_t key_size, const char* text, size_t size);

/** Sets a member of a dictionary to a string that renders never escape. */
STENCILOR_API int stencilor_value_set_raw_text(stencilor_value* dictionary, const char* key,
                                               size_t key_size, const char* text, size_t size);

/** Sets a member of a dictionary to an integer, as a string. */
STENCILOR_API int stencilor_value_set_integer(stencilor_value* dictionary, const char* key,
                                              size_t key_size, int64_t number);

/** Sets a member of a dictionary to a number, as a string. */
STENCILOR_API int stencilor_value_set_double(stencilor_value* dictionary, const char* key,
                                             size_t key_size, double number);

/** Frees a value and everything that it holds. */
STENCILOR_API void stencilor_value_free(stencilor_value* value);

/** @}
 * @name Contexts
 * @{ */

/** Creates a context from a dictionary, which is copied. Returns `STENCILOR_WRONG_KIND` for any
 * other value, `STENCILOR_INVALID_ARGUMENT` if a `$boolean` is not a boolean, or if a flag is
 * unknown or only applies to JSON, and `STENCILOR_TOO_LARGE` if dotted names would take more than
 * 512 MiB.
 * @param value the dictionary
 * @param flags a sum of `stencilor_context_flag`; 0 for none
 * @param context receives the context
 * @param error receives the reason if the value was rejected; may be null */
STENCILOR_API int stencilor_context_create(const stencilor_value* value, int flags,
                                           stencilor_context** context, stencilor_error** error);

/** Creates a context from a JSON object in one call, like `stencilor_value_parse_json` followed by
 * `stencilor_context_create`. It suits languages in which writing JSON is faster than many calls.
 * @param text the JSON text
 * @param size the bytes of the text
 * @param flags a sum of `stencilor_context_flag`; 0 for none
 * @param raw_mark marks raw strings: if a string begins with it, the rest becomes a raw string.
 *   Choose a mark that no other string begins with; empty for none
 * @param raw_mark_size the bytes of the mark
 * @param context receives the context
 * @param error receives the reason and, if known, the location; may be null */
STENCILOR_API int stencilor_context_parse_json(const char* text, size_t size, int flags,
                                               const char* raw_mark, size_t raw_mark_size,
                                               stencilor_context** context,
                                               stencilor_error** error);

/** Frees a context. */
STENCILOR_API void stencilor_context_free(stencilor_context* context);

/** @}
 * @name Templates
 * @{ */

/** Parses a template. Returns `STENCILOR_REJECTED` if it is not well formed; `parsed` still
 * receives a template, and `stencilor_template_fault` says what is wrong with it.
 * @param text the template, which ends at its first NUL
 * @param size the bytes of the text
 * @param name the name for messages, such as a path; may be empty
 * @param name_size the bytes of the name
 * @param parsed receives the template */
STENCILOR_API int stencilor_template_parse(const char* text, size_t size, const char* name,
                                           size_t name_size, stencilor_template** parsed);

/** The name of the template. */
STENCILOR_API const char* stencilor_template_name(const stencilor_template* parsed, size_t* size);

/** The text that the template was parsed from. */
STENCILOR_API const char* stencilor_template_text(const stencilor_template* parsed, size_t* size);

/** Returns why the template is not well formed, or null if it is. The message belongs to the
 * template. */
STENCILOR_API const stencilor_message* stencilor_template_fault(const stencilor_template* parsed);

/** Renders a template. For statuses up to `STENCILOR_DEPTH_LIMIT`, there is a result.
 * @param parsed the template
 * @param context its values
 * @param options how to render; null for the defaults
 * @param result receives the text and the messages; may be null */
STENCILOR_API int stencilor_template_render(const stencilor_template* parsed,
                                            const stencilor_context* context,
                                            const stencilor_options* options,
                                            stencilor_result** result);

/** Renders a template piece by piece. If the status is not `STENCILOR_OK`, only the beginning of
 * the text has been written. The text of the result is empty.
 * @param parsed the template
 * @param context its values
 * @param write receives the pieces
 * @param payload passed to `write`
 * @param options how to render; null for the defaults
 * @param result receives the messages; may be null */
STENCILOR_API int stencilor_template_render_to(const stencilor_template* parsed,
                                               const stencilor_context* context,
                                               stencilor_write_function write, void* payload,
                                               const stencilor_options* options,
                                               stencilor_result** result);

/** Renders the template at a path of the source in the options. Its bytes count like those of
 * included templates.
 * @param path the path as written in an include tag
 * @param path_size the bytes of the path
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

/** Creates options: values are not escaped, includes find nothing and may nest 100 deep, and 1,000
 * messages are kept. */
STENCILOR_API int stencilor_options_create(stencilor_options** options);

/** Sets how values are escaped, as a `stencilor_escape_kind`. */
STENCILOR_API int stencilor_options_set_escape(stencilor_options* options, int kind);

/** Sets a function that escapes values. It receives each value up to its first NUL.
 * @param options the options
 * @param escape the function; several renders may call it at once
 * @param payload passed to `escape` */
STENCILOR_API int stencilor_options_set_escape_function(stencilor_options* options,
                                                        stencilor_escape_function escape,
                                                        void* payload);

/** Sets a limit.
 * @param options the options
 * @param limit a `stencilor_limit`
 * @param value 0 for no limit; for the include depth, any number outside 1 to 100 means 100 */
STENCILOR_API int stencilor_options_set_limit(stencilor_options* options, int limit,
                                              uint64_t value);

/** Sets a function that decides whether to continue.
 * @param options the options
 * @param poll the function; null for none; several renders may call it at once
 * @param payload passed to `poll` */
STENCILOR_API int stencilor_options_set_poll(stencilor_options* options,
                                             stencilor_poll_function poll, void* payload);

/** Sets where included templates come from. The options keep the source alive, even after it is
 * freed.
 * @param options the options
 * @param source the source; null for none, so that includes find nothing */
STENCILOR_API int stencilor_options_set_source(stencilor_options* options,
                                               stencilor_source* source);

/** Frees options. */
STENCILOR_API void stencilor_options_free(stencilor_options* options);

/** @}
 * @name Sources
 * Several renders may use a source at once.
 * @{ */

/** Creates a source that keeps templates in memory. */
STENCILOR_API int stencilor_source_memory(stencilor_source** source);

/** Adds a template to a source in memory, or replaces the one at the same path; may be called while
 * renders run. Returns `STENCILOR_WRONG_KIND` for any other source.
 * @param source the source
 * @param path the path as written in include tags
 * @param path_size the bytes of the path
 * @param text the template, parsed once, here; it need not be well formed
 * @param size the bytes of the text */
STENCILOR_API int stencilor_source_add(stencilor_source* source, const char* path, size_t path_size,
                                       const char* text, size_t size);

/** Creates a source from the files in a folder and its subfolders. Nothing outside it can be
 * included, and files that change are read again. Returns `STENCILOR_NOT_FOUND` if it is not an
 * accessible folder.
 * @param path the folder, absolute or relative to the current working directory
 * @param size the bytes of the path
 * @param source receives the source */
STENCILOR_API int stencilor_source_folder(const char* path, size_t size, stencilor_source** source);

/** Creates a source from a function.
 * @param find the function; several renders may call it at once
 * @param payload passed to `find`
 * @param source receives the source */
STENCILOR_API int stencilor_source_callback(stencilor_find_function find, void* payload,
                                            stencilor_source** source);

/** Finds a template in a source and parses it. Returns `STENCILOR_REJECTED` if it is not well
 * formed; `parsed` still receives a template. Returns `STENCILOR_NOT_FOUND` or
 * `STENCILOR_UNREADABLE` if there is no template, and `STENCILOR_STOPPED` if a callback ended the
 * call.
 * @param source the source
 * @param path the path as written in an include tag
 * @param path_size the bytes of the path
 * @param parsed receives the template */
STENCILOR_API int stencilor_source_find(stencilor_source* source, const char* path,
                                        size_t path_size, stencilor_template** parsed);

/** Returns the maximum size of the template in bytes; a larger one ends the render. */
STENCILOR_API uint64_t stencilor_request_max_size(const stencilor_request* request);

/** Answers with the text of a template, to be parsed for this render. If it fails, so does the
 * render. */
STENCILOR_API int stencilor_request_set_text(stencilor_request* request, const char* text,
                                             size_t size);

/** Answers with a parsed template. It may be freed afterwards. */
STENCILOR_API int stencilor_request_set_template(stencilor_request* request,
                                                 const stencilor_template* parsed);

/** Answers that the template exists but cannot be read. */
STENCILOR_API int stencilor_request_set_unreadable(stencilor_request* request);

/** Appends to the text that replaces a value. If it fails, so does the render. */
STENCILOR_API int stencilor_output_append(stencilor_output* output, const char* text, size_t size);

/** Frees a source. Options that use it stay valid. */
STENCILOR_API void stencilor_source_free(stencilor_source* source);

/** @}
 * @name Results
 * @{ */

/** The status that the call returned; `STENCILOR_INVALID_ARGUMENT` for a null handle. */
STENCILOR_API int stencilor_result_status(const stencilor_result* result);

/** The number returned by the callback that ended the render; 0 if none did. */
STENCILOR_API int stencilor_result_stop_code(const stencilor_result* result);

/** The text, always valid UTF-8; empty unless the status is `STENCILOR_OK`. */
STENCILOR_API const char* stencilor_result_text(const stencilor_result* result, size_t* size);

/** Returns how much of a limit the render used; for messages, all of them, whether or not they were
 * kept. Returns 0 if a callback other than the poll function ended the render.
 * @param result the result
 * @param limit a `stencilor_limit` */
STENCILOR_API uint64_t stencilor_result_usage(const stencilor_result* result, int limit);

/** Returns the number of messages kept; 0 if a callback other than the poll function ended the
 * render. */
STENCILOR_API size_t stencilor_result_message_count(const stencilor_result* result);

/** Returns a message, in the order of the text, or null past the last one. It belongs to the
 * result.
 */
STENCILOR_API const stencilor_message* stencilor_result_message(const stencilor_result* result,
                                                                size_t index);

/** Frees a result and its messages. */
STENCILOR_API void stencilor_result_free(stencilor_result* result);

/** @}
 * @name Messages
 * @{ */

/** Returns the `stencilor_message_kind`. */
STENCILOR_API int stencilor_message_kind(const stencilor_message* message);

/** The message in English, without its location; one line. It is created on first use, and is empty
 * if that runs out of memory. */
STENCILOR_API const char* stencilor_message_text(const stencilor_message* message, size_t* size);

/** The name or path in the tag; empty if there is none. */
STENCILOR_API const char* stencilor_message_name(const stencilor_message* message, size_t* size);

/** The name of the template at the location. */
STENCILOR_API const char* stencilor_message_template_name(const stencilor_message* message,
                                                          size_t* size);

/** The line, from 1; 0 if there is no location. */
STENCILOR_API size_t stencilor_message_line(const stencilor_message* message);

/** The column in code points, from 1; 0 if there is no location. */
STENCILOR_API size_t stencilor_message_column(const stencilor_message* message);

/** Where the name, the path or the fault begins, in bytes from the beginning of the template. */
STENCILOR_API size_t stencilor_message_begin(const stencilor_message* message);

/** Where it ends: the offset of the first byte after it. */
STENCILOR_API size_t stencilor_message_end(const stencilor_message* message);

/** Returns the number of include tags that led to the location. */
STENCILOR_API size_t stencilor_message_include_count(const stencilor_message* message);

/** The name of the template that contains such an include tag; `index` 0 is the innermost one. */
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
 * If a callback ends a call, the number that it returned is not kept.
 * @{ */

/** Finds what is wrong with a template and everything that it includes, as
 * `stencilor check --format json` does. Returns `STENCILOR_OK` whatever it finds.
 * @param parsed the template, well formed or not
 * @param source where included templates come from; null for none: every include is then missing
 * @param context the values to look names up in; null to look up none
 * @param json receives a JSON document: `{"findings": [...]}` */
STENCILOR_API int stencilor_check(const stencilor_template* parsed, stencilor_source* source,
                                  const stencilor_context* context, stencilor_text** json);

/** Finds the same within limits, for templates from strangers: looking names up takes time that
 * grows with nested loops. If the steps are used up, a finding with the rule `limit` says so, and
 * names are not looked up from there on. Returns `STENCILOR_TEMPLATE_LIMIT` or `STENCILOR_STOPPED`,
 * and no text, if included templates are too large or a callback ended the call.
 * @param parsed the template, well formed or not
 * @param context the values to look names up in; null to look up none
 * @param options the source of included templates, the limits of steps (by default 100,000,000, as
 *   for `stencilor_check`), of template bytes and of messages, which here are the findings to keep,
 *   and the poll function; null for the defaults
 * @param json receives a JSON document: `{"findings": [...]}` */
STENCILOR_API int stencilor_check_limited(const stencilor_template* parsed,
                                          const stencilor_context* context,
                                          const stencilor_options* options, stencilor_text** json);

/** Lists the names that a template and everything that it includes look up in a context, as
 * `stencilor names --format json` does. Returns `STENCILOR_REJECTED` and no text for a template
 * that is not well formed.
 * @param parsed the template
 * @param source where included templates come from; null for none: every include is then missing
 * @param json receives a JSON document: `{"names": [...]}` */
STENCILOR_API int stencilor_names(const stencilor_template* parsed, stencilor_source* source,
                                  stencilor_text** json);

/** Lists the nodes of a template's syntax tree, as `stencilor tree --format json` does. Returns
 * `STENCILOR_REJECTED` and no text for a template that is not well formed.
 * @param parsed the template
 * @param json receives a JSON document: `{"files": [{"nodes": [...]}]}` */
STENCILOR_API int stencilor_tree(const stencilor_template* parsed, stencilor_text** json);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
