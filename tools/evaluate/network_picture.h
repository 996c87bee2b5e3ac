// network_picture.h: a network's first layer as a picture, a panel a hidden node.
#pragma once

#include "evaluate/network_figures.h"
#include "host/draw/canvas.h"

namespace stopngo {

/// In each panel the cells of the frame before and of the current one, a triangle a direction: its colour
/// tells whether motion that way raises or lowers the node's sum, its strength how much. columns: cells in
/// a row of the grid. Throws Failure when the network's inputs are no such grids.
Canvas DrawNetwork(const Network& network, std::size_t columns);

}  // namespace stopngo
