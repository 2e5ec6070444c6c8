// A page of pictures: HTML in one file, without scripts or references, written piece by piece.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace oldtorvio::draw {

// One file on the page: its picture, or why it has none.
struct Card {
  std::string name;  // UTF-8
  std::string note;  // UTF-8: its kind, or the reason
  std::string svg;   // drawn with isInline and an idPrefix of its own; empty if there is none
};

std::string pageHead(std::string_view title, std::size_t files);
std::string pageCard(const Card& card, std::size_t number);
std::string pageEnd();

}  // namespace oldtorvio::draw
