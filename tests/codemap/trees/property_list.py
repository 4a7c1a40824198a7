"""Reads a project file: a property list in the old style."""

import re

_WORD = re.compile(r"[A-Za-z0-9_$/:.\-]+")
_ASIDE = re.compile(r"(?:[ \t\r\n\v\f]|//[^\n]*|/\*.*?\*/)*", re.DOTALL)


class _Reader:
    def __init__(self, text):
        self.text = text
        self.place = 0

    def next(self):
        self.place = _ASIDE.match(self.text, self.place).end()
        return self.text[self.place]

    def take(self, sign):
        if self.next() != sign:
            raise ValueError(f"{sign} is missing at {self.place}")
        self.place += 1

    def value(self):
        sign = self.next()
        if sign == "{":
            return self.dictionary()
        if sign == "(":
            return self.array()
        if sign == '"':
            return self.string()
        word = _WORD.match(self.text, self.place)
        self.place = word.end()
        return word.group()

    def dictionary(self):
        self.take("{")
        entries = {}
        while self.next() != "}":
            key = self.value()
            self.take("=")
            entries[key] = self.value()
            self.take(";")
        self.take("}")
        return entries

    def array(self):
        self.take("(")
        values = []
        while self.next() != ")":
            values.append(self.value())
            if self.next() == ",":
                self.take(",")
        self.take(")")
        return values

    def string(self):
        self.take('"')
        characters = []
        while self.text[self.place] != '"':
            if self.text[self.place] == "\\":
                self.place += 1
            characters.append(self.text[self.place])
            self.place += 1
        self.place += 1
        return "".join(characters)


def parse(text):
    return _Reader(text.lstrip("\ufeff")).value()
