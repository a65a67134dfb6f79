# Writes what Qt makes of the QML files as one file, so that the headers are read once. The variables of a function, which
# Qt declares in an order that changes from run to run, are put in one that does not: builds can be compared byte for byte.

# A C++ declaration of one of Qt's registers, as "QObject *r2_1;".
/^[A-Za-z_].* \*?r[0-9]+_[0-9]+;$/ {
    for (i = count++; i > 0 && held[i - 1] > $0; --i)
        held[i] = held[i - 1]
    held[i] = $0
    next
}

{
    for (i = 0; i < count; ++i)
        print held[i]
    count = 0
    print
}
