enum color { red, green = 4, blue = green + 1, };
