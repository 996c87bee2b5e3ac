/* Without the gates: they are no settings of the module, but the host library's. */

/* The frames to be handed over, and how many a second: the times below count them. */
#define STOPNGO_FRAME_WIDTH 800
#define STOPNGO_FRAME_HEIGHT 480
#define STOPNGO_FRAMES_A_SECOND 6.0

/* Gives a detector that was opened its settings. Returns 0 unless the weights could not be read. */
/* clang-format off */
static int set_up(const VEL_STOPNGO_OPERATION* operations, void* context,
                  VEL_STIOPNGO_EVENT_CALLBACK changed, void* argument)
{
  int unused = 0;
  int loaded = -1;
  const int applied = operations->control(context,
      VEL_CTRL_STOPNGO_INPUT_WIDTH, 800,
      VEL_CTRL_STOPNGO_INPUT_HEIGHT, 480,
      VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE, 800,
      VEL_CTRL_STOPNGO_ROI_X, 290,
      VEL_CTRL_STOPNGO_ROI_Y, 260,
      VEL_CTRL_STOPNGO_ROI_WIDTH, 220,
      VEL_CTRL_STOPNGO_ROI_HEIGHT, 140,
      VEL_CTRL_STOPNGO_SET_SCALE, 0,
      VEL_CTRL_STOPNGO_SET_BLOCK_SIZE, 10,
      VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 80,
      VEL_CTRL_STOPNGO_SET_HIDDENS_COUNT, 16,
      VEL_CTRL_STOPNGO_SET_TIME_BEEPING, 6,
      VEL_CTRL_STOPNGO_SET_TIME_COOLING, 30,
      VEL_CTRL_STOPNGO_SET_TIME_LEAVING, 3,
      VEL_CTRL_STOPNGO_SET_FRAME_SKIP, 0,
      VEL_CTRL_STOPNGO_SET_CLASSIFIY_THRESHOLD, 0.3,
      VEL_CTRL_STOPNGO_SET_GAP_OP, 1,
      VEL_CTRL_STOPNGO_SET_FILTER, 0,
      VEL_CTRL_STOPNGO_SET_LOG, 0,
      VEL_CTRL_STOPNGO_LCD_WIDTH, 800,
      VEL_CTRL_STOPNGO_LCD_HEIGHT, 480,
      VEL_CTRL_STOPNGO_UPDATE_PARAMS, &unused,
      VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK, changed,
      VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS, argument,
      VEL_CTRL_STOPNGO_SET_CLASSIFY_PATH, "default.bin",
      VEL_CTRL_STOPNGO_LOAD_CLASSIFY, &loaded,
      VEL_CTRL_STOPNGO_END);
  return applied == 0 ? loaded : -1;
}
/* clang-format on */
