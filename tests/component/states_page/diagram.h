#ifndef TESTS_COMPONENT_STATES_PAGE_DIAGRAM_H
#define TESTS_COMPONENT_STATES_PAGE_DIAGRAM_H

#include <string>

/// The rows of the states' tables as an SVG picture: a box for each state, an arrow for each pair of states that a row
/// leads from and to, with the labels of these rows.
std::string diagram();

#endif
