#include "support/sample_form.h"

#include <QStringListModel>

// The pictures are part of a static library: nothing but this call brings them into the program.
static void LoadPictures()
{
    Q_INIT_RESOURCE(resources);
}

SampleForm::SampleForm()
{
    LoadPictures();
    setupUi(this);
    Area = std::make_unique<CoveredArea>(*Central, *Content, FullSize);
}

void SampleForm::UncoverCommandLine()
{
    resize(width(), FullSize.height());
    LblCommandLine->show();
    Label15->show();
    cmdPaste2->show();
}

void SampleForm::ShowStopwatch()
{
    LblTimer->setText("1:04:27");
    LblTimer->show();
    cmdPause->show();
    Command13->show();
}

void SampleForm::ShowLog()
{
    List2->setModel(new QStringListModel({"Session started at: 3/9/2024 5:05:08 PM",
                                          "Connect to FTP site  -  ftp://files.example.net        3/9/2024 5:05:12 PM",
                                          "Connected!        5:05:13 PM"},
                                         List2));
    Command22->setText("X");
    List2->show();
    List2->raise();
    Command23->show();
    Command25->show();
}

void SampleForm::FillIn()
{
    txtURL->setEditText("ftp://files.example.net");
    txtUserName->setText("ann");
    txtPassword->setText("secret");
    Combo1->setCurrentIndex(0);
    Drive1->addItems({"/", "/home"});
    Drive1->setCurrentIndex(1);
    Dir1->SetEntries({"/", "home", "ann", "Documents", "Music", "Pictures"});
    List1->SetEntries({"index.html", "letter to the editor.txt", "logo.gif", "notes.txt", "summer.jpg"});
    List1->SetListIndex(1);
    lstRemoteFiles->SetFixedPitch(true);
    lstRemoteFiles->SetEntries({"../", "drwxr-xr-x    4 1000     1000         4096 Mar 09 17:05 incoming",
                                "-rw-r--r--    1 1000     1000      1048576 Mar 09 17:05 a picture of the sea.jpg",
                                "-rw-r--r--    1 1000     1000         2210 Feb 11 08:30 read me first.txt"});
    Label2_0->setText("3");
    Label2_1->setText("5");
    DrvSpace->setText("1,934,127,104");
    sbFTP->setText("read me first.txt - File Received!");
}
