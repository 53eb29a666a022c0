#pragma once
/// Calls to the page. Its functions are those of the modules in web/ and have names such as
/// "window.setTitle"; a function that the page lacks is an error in its console and answers 0.
/// What the page tells the program are the exported functions of the services' sources.

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A value as JSON.
struct Json {
    Json(bool value) : text(value ? "true" : "false") {}
    Json(int value) : text(std::to_string(value)) {}
    Json(uint32_t value) : text(std::to_string(value)) {}
    Json(double value) : text(std::to_string(value)) {}
    Json(std::string_view utf8);
    Json(const std::string& utf8) : Json(std::string_view(utf8)) {}
    Json(const char* utf8) : Json(std::string_view(utf8)) {}
    template <typename Type>
    Json(const std::vector<Type>& values) : text("[") {
        for (const Type& value : values) append(Json(value));
        text += ']';
    }
    static Json object(std::initializer_list<std::pair<const char*, Json>> members);
    /// Of the answers of `make` to each of the values.
    template <typename Range, typename Make>
    static Json array(const Range& values, Make make) {
        Json all(std::vector<int>{});
        all.text.pop_back();
        for (const auto& value : values) all.append(make(value));
        all.text += ']';
        return all;
    }

    std::string text;

private:
    void append(const Json& value);
};

double call_page_with(const char* function, const Json& arguments);
std::optional<std::string> ask_page_with(const char* function, const Json& arguments);
double give_page_with(const char* function, const Json& arguments, std::span<const uint8_t> bytes);

/// The number that the page answers; 0 where it answers nothing.
template <typename... Arguments>
double call_page(const char* function, const Arguments&... arguments) {
    return call_page_with(function, std::vector<Json>{Json(arguments)...});
}
/// The text that the page answers, in UTF-8; nothing for null and undefined.
template <typename... Arguments>
std::optional<std::string> ask_page(const char* function, const Arguments&... arguments) {
    return ask_page_with(function, std::vector<Json>{Json(arguments)...});
}
/// Hands the page bytes as its last argument, a view that is gone when the call returns.
template <typename... Arguments>
double give_page(const char* function, std::span<const uint8_t> bytes,
                 const Arguments&... arguments) {
    return give_page_with(function, std::vector<Json>{Json(arguments)...}, bytes);
}
