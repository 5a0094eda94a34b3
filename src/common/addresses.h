#pragma once

#include <QString>
#include <QStringList>

/// Every outside address that the program can open. A deployer changes them in one file; the
/// compiled-in values point to reserved example domains and reach nobody.
struct Addresses {
    QString homePage = QStringLiteral("https://www.morlanda.example/"); ///< menu and logo
    QString secondHomePage = QStringLiteral("https://online.morlanda.example/"); ///< info screen
    QString faq = QStringLiteral("https://www.morlanda.example/tarvelo-ftp/faq.html");
    QString update = QStringLiteral("https://www.morlanda.example/tarvelo-ftp/update-2.20.html");
    QString supportMail = QStringLiteral("support@morlanda.example"); ///< help menu
    QString officeMail = QStringLiteral("office@morlanda.example"); ///< info screen
};

/// What reading the address files gave.
struct AddressesRead {
    Addresses addresses;
    /// One German sentence per value that was refused; empty when all is well.
    QStringList problems;
};

/// Reads address files (INI, group "Addresses", keys HomePage, SecondHomePage, Faq, Update,
/// SupportMail, OfficeMail). A later file wins over an earlier one, a missing file or key changes
/// nothing. Only http and https pages and plain mail addresses are taken: the values are handed to
/// the desktop's opener, which would start programs for other kinds of address.
[[nodiscard]] AddressesRead readAddresses(const QStringList &files);

/// The files to read: the system's, then "addresses.ini" beside the program.
/// @param programFolder  the executable's folder, with or without a separator at its end
[[nodiscard]] QStringList addressFiles(const QString &programFolder);
