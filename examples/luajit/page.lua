-- Renders a page with values from Lua: luajit page.lua [LIBRARY]
local ffi = require "ffi"
ffi.cdef [[
int stencilor_value_boolean(int, void**), stencilor_value_double(double, void**);
int stencilor_value_text(const char*, size_t, void**);
int stencilor_value_list(void**), stencilor_value_dictionary(void**);
int stencilor_value_add(void* list, void* item);
int stencilor_value_set(void* dictionary, const char* key, size_t, void* member);
int stencilor_context_create(const void* value, int flags, void** context, void** err);
int stencilor_template_parse(const char*, size_t, const char* name, size_t, void**);
int stencilor_template_render(const void*, const void* context, const void* options, void** result);
int stencilor_options_create(void**), stencilor_options_set_escape(void*, int kind);
void stencilor_value_free(void*), stencilor_context_free(void*), stencilor_template_free(void*);
void stencilor_options_free(void*), stencilor_result_free(void*);
const char *stencilor_result_text(const void*, size_t*), *stencilor_message_text(const void*, size_t*);
const void* stencilor_result_message(const void*, size_t index);
size_t stencilor_message_line(const void*), stencilor_message_column(const void*);
const char* stencilor_status_text(int);
]]
local C = ffi.load(arg[1] or "stencilor_c")

-- Calls a function that creates a handle; the handle frees itself.
local function make(kind, call)
  local place = ffi.new "void*[1]"
  local status = call(place)
  assert(status == 0, ffi.string(C.stencilor_status_text(status)))
  return ffi.gc(place[0], C["stencilor_" .. kind .. "_free"])
end

local function value(from)
  local kind = type(from)
  local made = make("value", function(place)
    if kind == "boolean" then return C.stencilor_value_boolean(from and 1 or 0, place) end
    if kind == "number" then return C.stencilor_value_double(from, place) end
    if kind == "string" then return C.stencilor_value_text(from, #from, place) end
    return #from > 0 and C.stencilor_value_list(place) or C.stencilor_value_dictionary(place)
  end)
  if kind ~= "table" then return made end
  for key, member in (#from > 0 and ipairs or pairs)(from) do
    if #from > 0 then C.stencilor_value_add(made, value(member))
    else C.stencilor_value_set(made, key, #key, value(member)) end
  end
  return made
end

local text = "<h1>{{ title }}</h1>\n{% for tea in teas %}{{ tea.name }}: {{ tea.price }}\n{% endfor %}{{ note }}"
local values = value {title = "Tea & cake", teas = {{name = "Assam", price = 4.5}, {name = "Sencha", price = 6}}}
local page = make("template", function(place) return C.stencilor_template_parse(text, #text, "page", 4, place) end)
local context = make("context", function(place) return C.stencilor_context_create(values, 0, place, nil) end)
local options = make("options", C.stencilor_options_create)
C.stencilor_options_set_escape(options, 1) -- STENCILOR_ESCAPE_HTML

local result = make("result", function(place) return C.stencilor_template_render(page, context, options, place) end)
io.write(ffi.string(C.stencilor_result_text(result, nil)))
local message = C.stencilor_result_message(result, 0)
print(("page:%d:%d: %s"):format(tonumber(C.stencilor_message_line(message)),
  tonumber(C.stencilor_message_column(message)), ffi.string(C.stencilor_message_text(message, nil))))
