func tide(
    height: Int,
    time: Int,
) {}
