/* contraction_weights.c: a weights file made by hand, to show how one is laid out and what the network sees.
 *
 *     contraction_weights weights.bin
 *
 * A vehicle that drives away shrinks: what is left of the region's middle moves right, what is right of it
 * moves left, and its lower edge moves up. One hidden node adds these motions up and takes off their
 * opposites, so that a camera that merely shakes or turns cancels out; the other fifteen nodes stay silent.
 * It is an example, not a trained classifier: it knows one kind of motion and no disturbance. */
#include <stdio.h>

enum { CELL_ROWS = 4, CELL_COLUMNS = 5, DIRECTIONS = 4, HIDDENS = 16 };
enum { FEATURES = CELL_ROWS * CELL_COLUMNS * DIRECTIONS, INPUTS = 2 * FEATURES };
enum { COUNT = (INPUTS + 2) * HIDDENS + 1 };

/* One cell's directions, in the order of the histogram. */
enum { DOWN, RIGHT, UP, LEFT };

/* How many pixels of contraction, summed over both frames' 480 vectors, the node calls a departure. */
static const float CONTRACTION = 60.0F;
/* How steeply the hidden node rises around it, per pixel, and the score with the hidden node. */
static const float STEEPNESS = 0.1F;
static const float OUTPUT_WEIGHT = 8.0F;
/* A feature is a sum of pixels divided by this. */
static const float FEATURE_SCALE = 128.0F;

int main(int argc, char** argv) {
  static float weights[COUNT]; /* all zero */
  float* biases = weights + INPUTS * HIDDENS;
  float* output = biases + HIDDENS;

  for (int frame = 0; frame < 2; ++frame) {
    for (int cell = 0; cell < CELL_ROWS * CELL_COLUMNS; ++cell) {
      float* direction = weights + frame * FEATURES + cell * DIRECTIONS;
      /* -1 in the left column of cells, 0 in the middle one, +1 in the right one. */
      const float side = (float)(cell % CELL_COLUMNS - CELL_COLUMNS / 2) / (CELL_COLUMNS / 2);
      /* 0 in the top row, 1 in the bottom one. */
      const float depth = (float)(cell / CELL_COLUMNS) / (CELL_ROWS - 1);
      direction[RIGHT] = -side * STEEPNESS * FEATURE_SCALE;
      direction[LEFT] = side * STEEPNESS * FEATURE_SCALE;
      direction[UP] = depth * STEEPNESS * FEATURE_SCALE;
      direction[DOWN] = -depth * STEEPNESS * FEATURE_SCALE;
    }
  }
  biases[0] = -CONTRACTION * STEEPNESS;
  output[0] = OUTPUT_WEIGHT;
  output[HIDDENS] = -OUTPUT_WEIGHT / 2;

  FILE* file = argc == 2 ? fopen(argv[1], "wb") : NULL;
  if (file == NULL) {
    fprintf(stderr, "usage: contraction_weights FILE (which must be writable)\n");
    return 1;
  }
  const size_t written = fwrite(weights, sizeof weights[0], COUNT, file);
  const int closed = fclose(file);
  if (written != COUNT || closed != 0) {
    fprintf(stderr, "contraction_weights: %s could not be written\n", argv[1]);
    return 1;
  }
  printf("%s: %d weights, %d inputs, %d hidden nodes\n", argv[1], COUNT, INPUTS, HIDDENS);
  return 0;
}
