#include "ui/layout.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace girder::ui {
namespace {

/// What a box asks for along one axis.
struct demand {
    int least = 0;
    int natural = 0;
    bool grows = false;
};

/// Takes parts of an amount in proportion to weights, so that all parts together are the whole amount.
class apportioned {
public:
    apportioned(int amount, long long total_weight) : amount_(amount), total_(std::max(total_weight, 1LL)) {}

    int next(int weight)
    {
        seen_ += weight;
        const auto due = static_cast<int>(amount_ * seen_ / total_);
        return due - std::exchange(given_, due);
    }

private:
    long long amount_;
    long long total_;
    long long seen_ = 0;
    int given_ = 0;
};

/// Divides `room` among neighbours: what is left over goes to those that grow, what is missing comes from those that
/// may become smaller.
std::vector<int> divided(const std::vector<demand>& demands, int room)
{
    const auto sum = [&](auto value) {
        return std::accumulate(demands.begin(), demands.end(), 0,
                               [&](int total, const demand& each) { return total + value(each); });
    };
    const auto slack_of = [](const demand& each) { return each.natural - each.least; };
    const auto growth_of = [](const demand& each) { return each.grows ? 1 : 0; };

    const int spare = room - sum([](const demand& each) { return each.natural; });
    const int slack = sum(slack_of);
    const int growing = sum(growth_of);
    apportioned extra(growing > 0 ? std::max(spare, 0) : 0, growing);
    apportioned lack(std::min(std::max(-spare, 0), slack), slack);
    std::vector<int> sizes;
    sizes.reserve(demands.size());
    for (const demand& each : demands)
        sizes.push_back(each.natural + extra.next(growth_of(each)) - lack.next(slack_of(each)));
    return sizes;
}

/// A box on its way to its place. Widths come first, because the heights of wrapped texts follow from them.
class fitted {
public:
    explicit fitted(const box& node) : node_(node), children_(node.children.begin(), node.children.end())
    {
        if (node.equal_widths)
            equalise();
        width_ = is(box::arrangement::row) ? along(&fitted::width_) : across(&fitted::width_);
        if (is(box::arrangement::control))
            width_ = {.least = std::min(node.least.width, node.natural.width), .natural = node.natural.width};
        else
            pad(width_, node.padding.left + node.padding.right, node.natural.width);
        width_.grows = node.grows_wide;
    }

    const demand& width() const { return width_; }
    const demand& height() const { return height_; }

    /// Settles every width in the tree, and with it what heights are asked for.
    void set_width(int width)
    {
        final_width_ = width;
        const int inner = width - node_.padding.left - node_.padding.right;
        const std::vector<int> in_row =
            is(box::arrangement::row) ? divided(demands(&fitted::width_), inner - gaps()) : std::vector<int>{};
        for (std::size_t i = 0; i < children_.size(); ++i)
            children_[i].set_width(in_row.empty() ? children_[i].width_in_column(inner) : in_row[i]);
        height_ = is(box::arrangement::column) ? along(&fitted::height_) : across(&fitted::height_);
        if (is(box::arrangement::control))
            height_ = control_height();
        else
            pad(height_, node_.padding.top + node_.padding.bottom, 0);
        height_.grows = node_.grows_high;
    }

    void place(int x, int y, int height, std::vector<placement>& out) const
    {
        if (node_.control != 0)
            out.push_back(
                {.control = node_.control, .place = {.x = x, .y = y, .width = final_width_, .height = height}});
        const int left = x + node_.padding.left;
        const int top = y + node_.padding.top;
        const int inner = height - node_.padding.top - node_.padding.bottom;
        if (is(box::arrangement::row))
            place_row(left, top, inner, out);
        else
            place_column(left, top, inner, out);
    }

private:
    bool is(box::arrangement kind) const { return node_.kind == kind; }

    int gaps() const
    {
        const auto count = std::max<std::size_t>(children_.size(), 1) - 1;
        return node_.spacing * static_cast<int>(count);
    }

    static void pad(demand& inner, int padding, int at_least)
    {
        inner.least = std::max(inner.least + padding, at_least);
        inner.natural = std::max(inner.natural + padding, at_least);
    }

    void equalise()
    {
        demand widest;
        for (const fitted& child : children_)
            widest = {.least = std::max(widest.least, child.width_.least),
                      .natural = std::max(widest.natural, child.width_.natural)};
        for (fitted& child : children_)
            child.width_ = {.least = widest.least, .natural = widest.natural, .grows = child.width_.grows};
    }

    demand along(demand fitted::* axis) const
    {
        demand total{.least = gaps(), .natural = gaps()};
        for (const fitted& child : children_) {
            total.least += (child.*axis).least;
            total.natural += (child.*axis).natural;
        }
        return total;
    }

    demand across(demand fitted::* axis) const
    {
        demand most;
        for (const fitted& child : children_) {
            most.least = std::max(most.least, (child.*axis).least);
            most.natural = std::max(most.natural, (child.*axis).natural);
        }
        return most;
    }

    std::vector<demand> demands(demand fitted::* axis) const
    {
        std::vector<demand> all;
        all.reserve(children_.size());
        for (const fitted& child : children_)
            all.push_back(child.*axis);
        return all;
    }

    int width_in_column(int inner) const
    {
        const bool whole = node_.grows_wide || !is(box::arrangement::control);
        return whole ? inner : std::min(width_.natural, inner);
    }

    demand control_height() const
    {
        if (!node_.height_at)
            return {.least = std::min(node_.least.height, node_.natural.height), .natural = node_.natural.height};
        const int natural = node_.height_at(final_width_);
        return {.least = node_.least.height > 0 ? std::min(node_.least.height, natural) : natural, .natural = natural};
    }

    void place_row(int x, int top, int inner, std::vector<placement>& out) const
    {
        for (const fitted& child : children_) {
            const int height = child.height_.grows ? inner : std::min(child.height_.natural, inner);
            const int y = child.node_.stays_at_top ? top : top + (inner - height) / 2;
            child.place(x, y, height, out);
            x += child.final_width_ + node_.spacing;
        }
    }

    void place_column(int left, int y, int inner, std::vector<placement>& out) const
    {
        const std::vector<int> heights = divided(demands(&fitted::height_), inner - gaps());
        for (std::size_t i = 0; i < children_.size(); ++i) {
            children_[i].place(left, y, heights[i], out);
            y += heights[i] + node_.spacing;
        }
    }

    const box& node_;
    std::vector<fitted> children_;
    demand width_;
    demand height_;
    int final_width_ = 0;
};

/// Where a stretch of `length` from `start` goes to lie in [low, low + room); its start wins when it is longer.
int pushed_inside(int start, int length, int low, int room)
{
    return std::max(low, std::min(start, low + room - length));
}

} // namespace

box::box() = default;
box::box(const box& other) = default;
box::box(box&& other) noexcept = default;
box& box::operator=(const box& other) = default;
box& box::operator=(box&& other) noexcept = default;
box::~box() = default;

box control_box(int control, extent natural)
{
    box made;
    made.control = control;
    made.natural = natural;
    made.least = natural;
    return made;
}

box wrapped_box(int control, int natural_width, std::function<int(int width)> height_at)
{
    box made = control_box(control, {.width = natural_width, .height = 0});
    made.height_at = std::move(height_at);
    return made;
}

box filler(int least_width)
{
    return growing_wide(control_box(0, {.width = least_width, .height = 0}));
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

box at_top(box inner)
{
    inner.stays_at_top = true;
    return inner;
}

box shrinking_to(extent least, box control)
{
    control.least = least;
    return control;
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

extent natural_size(const box& root, int widest)
{
    fitted tree(root);
    const int width = std::max(tree.width().least, std::min(tree.width().natural, widest));
    tree.set_width(width);
    return {.width = width, .height = tree.height().natural};
}

std::vector<placement> arrange(const box& root, const area& available)
{
    fitted tree(root);
    tree.set_width(std::max(available.width, tree.width().least));
    std::vector<placement> out;
    tree.place(available.x, available.y, std::max(available.height, tree.height().least), out);
    return out;
}

scrolled_fit fit_scrolled(const box& root, extent inside, extent bars)
{
    // A bar takes room from the other axis, which may then need one, too.
    scrolled_fit fit;
    bool down = false;
    bool across = false;
    for (int bars_found = 0; bars_found <= 2; ++bars_found) {
        fit.page = {.width = inside.width - (down ? bars.width : 0),
                    .height = inside.height - (across ? bars.height : 0)};
        fitted tree(root);
        fit.content.width = std::max(fit.page.width, tree.width().least);
        tree.set_width(fit.content.width);
        fit.content.height = std::max(fit.page.height, tree.height().least);
        down = down || fit.content.height > fit.page.height;
        across = across || fit.content.width > fit.page.width;
    }
    return fit;
}

area centred(extent size, const area& around, const area& bounds)
{
    return moved_inside({.x = around.x + (around.width - size.width) / 2,
                         .y = around.y + (around.height - size.height) / 2,
                         .width = size.width,
                         .height = size.height},
                        bounds);
}

area moved_inside(const area& place, const area& bounds)
{
    return {.x = pushed_inside(place.x, place.width, bounds.x, bounds.width),
            .y = pushed_inside(place.y, place.height, bounds.y, bounds.height),
            .width = place.width,
            .height = place.height};
}

} // namespace girder::ui
