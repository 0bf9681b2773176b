#include "layout.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int block_gap = 8;
constexpr int title_gap = 20; // its rule is in the middle
constexpr int heading_gap = 16;

struct WORD {
    std::string text;
    int width;
    int link;
    bool blank_before;
};

const char* rendition_of(HELP_BLOCK_KIND kind) {
    switch (kind) {
    case HELP_BLOCK_KIND::TITLE:
    case HELP_BLOCK_KIND::HEADING:
        return "strong";
    case HELP_BLOCK_KIND::FIXED:
        return "fields";
    default:
        return "labels";
    }
}

// Characters that the locale's fonts may not have, as plain ones.
std::string for_display(const std::string& text) {
    if (MB_CUR_MAX > 1) {
        return text;
    }
    static constexpr struct {
        const char* character;
        const char* plain;
    } plain[] = {
        {"\u2018", "'"}, {"\u2019", "'"}, {"\u201c", "\""}, {"\u201d", "\""},  {"\u2013", "-"},
        {"\u2014", "-"}, {"\u2010", "-"}, {"\u2212", "-"},  {"\u2026", "..."}, {"\u2192", "->"},
        {"\u2022", "*"}, {"\u00d7", "x"}, {"\u00a0", " "},  {"\u00b7", "*"},
    };
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        if (static_cast<unsigned char>(text[i]) < 0x80) {
            result += text[i++];
            continue;
        }
        std::size_t end = i + 1;
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
            ++end;
        }
        const auto* row = std::ranges::find(plain, text.substr(i, end - i),
                                            [](const auto& each) { return each.character; });
        result += row != std::end(plain) ? row->plain : "?";
        i = end;
    }
    return result;
}

int width_of(XmRenderTable table, const std::string& text, const char* rendition) {
    XmString string = help_string(text, rendition);
    const int width = XmStringWidth(table, string);
    XmStringFree(string);
    return width;
}

class BREAKER {
public:
    BREAKER(XmRenderTable table, int width, HELP_LAYOUT* layout)
        : table_(table), width_(width), layout_(layout) {}

    void add(const HELP_BLOCK& block) {
        kind_ = block.kind;
        rendition_ = rendition_of(kind_);
        leave_gap();
        first_ = true;
        if (kind_ == HELP_BLOCK_KIND::FIXED) {
            const std::string text = for_display(block.spans[0].text);
            words_ = {{text, width_of(table_, text, rendition_), -1, false}};
            end_line();
        } else {
            wrap(words_of(block));
        }
        before_ = kind_;
    }

    int height() const { return y_ + HELP_MARGIN; }

private:
    void leave_gap() {
        if (layout_->lines.empty()) {
            return;
        }
        const bool tight = kind_ == before_ && kind_ == HELP_BLOCK_KIND::FIXED;
        const bool list = kind_ == HELP_BLOCK_KIND::ITEM && before_ != HELP_BLOCK_KIND::TITLE;
        y_ += tight                                 ? 0
              : before_ == HELP_BLOCK_KIND::TITLE   ? title_gap
              : kind_ == HELP_BLOCK_KIND::HEADING   ? heading_gap
              : list                                ? block_gap / 2
              : before_ == HELP_BLOCK_KIND::HEADING ? block_gap / 2
                                                    : block_gap;
    }

    std::vector<WORD> words_of(const HELP_BLOCK& block) {
        std::vector<WORD> words;
        bool blank = false;
        for (const HELP_SPAN& span : block.spans) {
            int link = -1;
            if (span.link.kind != HELP_LINK_KIND::NONE) {
                link = static_cast<int>(layout_->links.size());
                layout_->links.push_back({span.link, span.text});
            }
            const std::string text = for_display(span.text);
            for (std::size_t at = 0; at < text.size();) {
                if (text[at] == ' ') {
                    blank = true;
                    ++at;
                    continue;
                }
                const std::size_t end = std::min(text.find(' ', at), text.size());
                const std::string word = text.substr(at, end - at);
                words.push_back({word, width_of(table_, word, rendition_), link, blank});
                blank = false;
                at = end;
            }
        }
        return words;
    }

    int indent() const { return HELP_MARGIN + (kind_ == HELP_BLOCK_KIND::ITEM ? HELP_INDENT : 0); }

    // Words that no blank parts stay together: a link and the full stop behind it.
    void wrap(const std::vector<WORD>& words) {
        const int blank = width_of(table_, " ", rendition_);
        int used = 0;
        for (std::size_t i = 0; i < words.size();) {
            std::size_t end = i + 1;
            int width = words[i].width;
            while (end < words.size() && !words[end].blank_before) {
                width += words[end++].width;
            }
            const int gap = words_.empty() ? 0 : blank;
            if (!words_.empty() && indent() + used + gap + width > width_ - HELP_MARGIN) {
                end_line();
                used = 0;
            }
            used += (words_.empty() ? 0 : blank) + width;
            words_.insert(words_.end(), words.begin() + static_cast<std::ptrdiff_t>(i),
                          words.begin() + static_cast<std::ptrdiff_t>(end));
            i = end;
        }
        end_line();
    }

    void end_line() {
        HELP_LINE line{y_, 0, 0, kind_, first_, {}};
        int x = indent();
        for (std::size_t i = 0; i < words_.size();) {
            std::string text = i > 0 && words_[i].blank_before ? " " : "";
            if (!text.empty() && words_[i].link >= 0) { // a link has no blank before it
                x += width_of(table_, " ", rendition_);
                text.clear();
            }
            const int link = words_[i].link;
            text += words_[i].text;
            for (++i; i < words_.size() && words_[i].link == link; ++i) {
                text += (words_[i].blank_before ? " " : "") + words_[i].text;
            }
            XmString string = help_string(text, rendition_);
            const int width = XmStringWidth(table_, string);
            line.runs.push_back({string, x, width, link});
            line.height = std::max<int>(line.height, XmStringHeight(table_, string));
            line.baseline = std::max<int>(line.baseline, XmStringBaseline(table_, string));
            x += width;
        }
        if (line.runs.empty() || line.height == 0) {
            line.height = help_line_height(table_);
        }
        y_ += line.height;
        layout_->lines.push_back(std::move(line));
        words_.clear();
        first_ = false;
    }

    XmRenderTable table_;
    int width_;
    HELP_LAYOUT* layout_;
    int y_ = HELP_MARGIN;
    HELP_BLOCK_KIND kind_{};
    HELP_BLOCK_KIND before_{};
    const char* rendition_ = nullptr;
    bool first_ = true;
    std::vector<WORD> words_; // of the line
};

} // namespace

void help_lay_out(const HELP_TOPIC& topic, XmRenderTable table, int width, HELP_LAYOUT* layout) {
    help_free_layout(layout);
    BREAKER breaker(table, width, layout);
    breaker.add({HELP_BLOCK_KIND::TITLE, {{topic.title, {}}}});
    for (const HELP_BLOCK& block : topic.blocks) {
        breaker.add(block);
    }
    layout->height = breaker.height();
}

void help_free_layout(HELP_LAYOUT* layout) {
    for (const HELP_LINE& line : layout->lines) {
        for (const HELP_RUN& run : line.runs) {
            XmStringFree(run.string);
        }
    }
    *layout = {};
}

int help_text_width(XmRenderTable table, int columns, bool fixed) {
    const std::string text(static_cast<std::size_t>(columns), fixed ? '0' : 'n');
    return width_of(table, text, fixed ? "fields" : "labels");
}

int help_line_height(XmRenderTable table) {
    XmString string = help_string("Xg", "labels");
    const int height = XmStringHeight(table, string);
    XmStringFree(string);
    return height;
}

XmString help_string(const std::string& text, const char* rendition) {
    return XmStringGenerate(const_cast<char*>(text.c_str()), nullptr, XmCHARSET_TEXT,
                            const_cast<char*>(rendition));
}

XmString help_label(const std::string& text) {
    return XmStringCreateLtoR(const_cast<char*>(text.c_str()),
                              const_cast<char*>(XmFONTLIST_DEFAULT_TAG));
}
