#include "ui/layout.h"

#include <algorithm>
#include <utility>

namespace girder::ui {
namespace {

int spacing_of(const box& parent)
{
    const auto gaps = std::max<std::size_t>(parent.children.size(), 1) - 1;
    return parent.spacing * static_cast<int>(gaps);
}

/// Natural sizes of a box's children, with equal widths where the box asks for them.
std::vector<extent> children_sizes(const box& parent)
{
    std::vector<extent> sizes;
    sizes.reserve(parent.children.size());
    int widest = 0;
    for (const box& child : parent.children) {
        sizes.push_back(natural_size(child));
        widest = std::max(widest, sizes.back().width);
    }
    if (parent.equal_widths)
        for (extent& size : sizes)
            size.width = widest;
    return sizes;
}

/// Divides what is left over among the growing children, earlier ones getting the odd pixels.
class surplus {
public:
    surplus(int left_over, std::ptrdiff_t growing)
        : left_over_(std::max(left_over, 0)), growing_(static_cast<int>(growing))
    {}

    int next_share()
    {
        const int share = (left_over_ + growing_ - 1) / growing_;
        left_over_ -= share;
        --growing_;
        return share;
    }

private:
    int left_over_;
    int growing_;
};

void place(const box& node, const area& available, std::vector<placement>& out);

void place_row(const box& node, const area& inner, std::vector<placement>& out)
{
    const std::vector<extent> sizes = children_sizes(node);
    int used = spacing_of(node);
    for (const extent& size : sizes)
        used += size.width;
    surplus extra(inner.width - used, std::ranges::count(node.children, true, &box::grows_wide));
    int x = inner.x;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        const box& child = node.children[i];
        const int width = sizes[i].width + (child.grows_wide ? extra.next_share() : 0);
        const int height = child.grows_high ? inner.height : sizes[i].height;
        place(child, {.x = x, .y = inner.y + (inner.height - height) / 2, .width = width, .height = height}, out);
        x += width + node.spacing;
    }
}

void place_column(const box& node, const area& inner, std::vector<placement>& out)
{
    const std::vector<extent> sizes = children_sizes(node);
    int used = spacing_of(node);
    for (const extent& size : sizes)
        used += size.height;
    surplus extra(inner.height - used, std::ranges::count(node.children, true, &box::grows_high));
    int y = inner.y;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        const box& child = node.children[i];
        const int height = sizes[i].height + (child.grows_high ? extra.next_share() : 0);
        const bool whole_width = child.grows_wide || child.kind != box::arrangement::control;
        const int width = whole_width ? inner.width : std::min(sizes[i].width, inner.width);
        place(child, {.x = inner.x, .y = y, .width = width, .height = height}, out);
        y += height + node.spacing;
    }
}

void place(const box& node, const area& available, std::vector<placement>& out)
{
    if (node.control != 0)
        out.push_back({.control = node.control, .place = available});
    const area inner{.x = available.x + node.padding.left,
                     .y = available.y + node.padding.top,
                     .width = available.width - node.padding.left - node.padding.right,
                     .height = available.height - node.padding.top - node.padding.bottom};
    if (node.kind == box::arrangement::row)
        place_row(node, inner, out);
    else if (node.kind == box::arrangement::column)
        place_column(node, inner, out);
}

} // namespace

box control_box(int control, extent natural)
{
    box made;
    made.control = control;
    made.natural = natural;
    return made;
}

box filler(int least_width)
{
    box made = control_box(0, {.width = least_width, .height = 0});
    made.grows_wide = true;
    return made;
}

box row(std::vector<box> children, int spacing)
{
    box made;
    made.kind = box::arrangement::row;
    made.spacing = spacing;
    made.children = std::move(children);
    return made;
}

box column(std::vector<box> children, int spacing)
{
    box made = row(std::move(children), spacing);
    made.kind = box::arrangement::column;
    return made;
}

box growing_wide(box inner)
{
    inner.grows_wide = true;
    return inner;
}

box growing_both(box inner)
{
    inner.grows_wide = true;
    inner.grows_high = true;
    return inner;
}

box padded(box inner, margins padding)
{
    box made = column({growing_both(std::move(inner))}, 0);
    made.padding = padding;
    return made;
}

box framed(int control, box inner, margins padding, int least_width)
{
    box made = padded(std::move(inner), padding);
    made.control = control;
    made.natural.width = least_width;
    return made;
}

box with_equal_widths(box inner)
{
    inner.equal_widths = true;
    return inner;
}

extent natural_size(const box& root)
{
    extent total = root.kind == box::arrangement::control ? root.natural : extent{};
    const bool is_row = root.kind == box::arrangement::row;
    for (const extent& size : children_sizes(root)) {
        total.width = is_row ? total.width + size.width : std::max(total.width, size.width);
        total.height = is_row ? std::max(total.height, size.height) : total.height + size.height;
    }
    (is_row ? total.width : total.height) += spacing_of(root);
    total.width = std::max(total.width + root.padding.left + root.padding.right, root.natural.width);
    total.height += root.padding.top + root.padding.bottom;
    return total;
}

std::vector<placement> arrange(const box& root, const area& available)
{
    const extent least = natural_size(root);
    std::vector<placement> out;
    place(root,
          {.x = available.x,
           .y = available.y,
           .width = std::max(available.width, least.width),
           .height = std::max(available.height, least.height)},
          out);
    return out;
}

} // namespace girder::ui
