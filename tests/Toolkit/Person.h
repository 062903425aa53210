#pragma once

#include <QObject>

namespace tembra {

/// A listed object as the tests need it: some observable properties, two of them with one signal.
class Person : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(qint16 age READ age WRITE setAge NOTIFY numbersChanged)
    Q_PROPERTY(double height READ height NOTIFY numbersChanged)
    Q_PROPERTY(QString remark MEMBER remark)

public:
    explicit Person(const QString &name, int age = 0) : m_name(name), m_age(qint16(age)) {}

    QString name() const { return m_name; }
    void setName(const QString &name)
    {
        m_name = name;
        Q_EMIT nameChanged();
    }
    qint16 age() const { return m_age; }
    void setAge(qint16 age)
    {
        m_age = age;
        Q_EMIT numbersChanged();
    }
    double height() const
    {
        ++heightReads;
        return m_age * 1.5;
    }

    QString remark;
    mutable int heightReads = 0;

Q_SIGNALS:
    void nameChanged();
    void numbersChanged();

private:
    QString m_name;
    qint16 m_age;
};

} // namespace tembra
