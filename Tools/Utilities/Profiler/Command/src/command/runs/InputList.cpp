#include "command/runs/InputList.h"

#include <cerrno>
#include <iostream>
#include <string_view>
#include <utility>

#include "command/Failure.h"

namespace zeb::command {

InputList::InputList(const std::vector<std::string>& logs, const std::string& filesFrom, Labels labels)
    : logs_(logs), filesFrom_(filesFrom), labels_(std::move(labels)) {
    if (filesFrom == "-") {
        lines_ = &std::cin;
    } else if (!filesFrom.empty()) {
        file_.open(filesFrom);
        if (!file_) {
            throw Failure(ExitCode::usage, filesFrom, "the list can't be read: " + errorText(errno));
        }
        lines_ = &file_;
    }
}

std::optional<Input> InputList::next() {
    const std::lock_guard lock(mutex_);
    if (position_ < logs_.size()) {
        const std::size_t position = position_++;
        return Input{position, logs_[position], labels_};
    }
    return lines_ == nullptr ? std::nullopt : nextOfFile();
}

std::optional<Input> InputList::nextOfFile() {
    std::string line;
    do {
        ++line_;
        if (!std::getline(*lines_, line)) {
            if (lines_->bad()) {
                throw Failure(ExitCode::usage, filesFrom_, "the list can't be read: " + errorText(errno));
            }
            return std::nullopt;
        }
        if (line.ends_with('\r')) {  // of a list that was written elsewhere
            line.pop_back();
        }
    } while (line.empty());
    const auto fail = [this](const std::string& cause) {
        throw Failure(ExitCode::usage, filesFrom_ + ", line " + std::to_string(line_), cause);
    };
    Input input{position_++, line.substr(0, line.find('\t')), labels_};
    if (input.path.empty()) {
        fail("there is no path");
    }
    for (std::size_t end = input.path.size(); end < line.size();) {
        const std::size_t begin = end + 1;
        end = std::min(line.find('\t', begin), line.size());
        if (const auto trouble = addLabel(input.labels, std::string_view(line).substr(begin, end - begin))) {
            fail(*trouble);
        }
    }
    return input;
}

}  // namespace zeb::command
