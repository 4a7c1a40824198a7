int shown;
