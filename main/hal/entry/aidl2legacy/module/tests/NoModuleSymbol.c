/* A shared object that is not a HAL module: it exports no HAL_MODULE_INFO_SYM. */
__attribute__((visibility("default"))) int not_a_camera_module(void) {
    return 0;
}
