extern const struct Orientations {
    int portrait;
    int landscape;
} Orientations;

const struct Orientations Orientations = {
    .portrait = 1,
    .landscape = 2,
};
