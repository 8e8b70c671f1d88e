#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QTranslator>

/** Translates every text into its context, a slash and the text itself, for as long as it lives. */
class ContextTranslator : public QTranslator
{
public:
    ContextTranslator() { QCoreApplication::installTranslator(this); }
    ~ContextTranslator() override { QCoreApplication::removeTranslator(this); }
    Q_DISABLE_COPY_MOVE(ContextTranslator)

    QString translate(const char* context, const char* text, const char*, int) const override
    {
        return QLatin1StringView(context) + u'/' + QLatin1StringView(text);
    }
    bool isEmpty() const override { return false; }
};
