/* A module of the PNG codec's name without its function. */
int ktclr_test_empty_module_marker(void);
int ktclr_test_empty_module_marker(void) { return 1; }
