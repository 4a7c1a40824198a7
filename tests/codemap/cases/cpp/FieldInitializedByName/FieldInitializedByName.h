struct View {
    Metrics metrics = EmptyMetrics;
    const float *sizes = kDefaultSizes, scale = kScale;
};
