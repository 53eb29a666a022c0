#pragma once
/// The examples in a page of the documentation, so that tests can run them.
///
/// An example is a row of blocks <pre class="KIND">; the next one of the kind "screen" ends it.
/// Of a block's text the tags are left out and the entities resolved; <kbd>BREAK</kbd> stands for
/// the code of that key.

#include <string>
#include <vector>

struct HtmlBlock {
    std::string kind;
    std::vector<std::string> lines; ///< without the blanks at their ends
};

struct HtmlExample {
    unsigned line = 0; ///< of the page where it begins
    std::vector<HtmlBlock> blocks;
    /// The lines of all its blocks of a kind.
    std::vector<std::string> lines(const std::string& kind) const;
};

/// None when the file cannot be read.
std::vector<HtmlExample> read_html_examples(const std::string& path);
