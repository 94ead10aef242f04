#ifndef ZEPHRIN2D_TESTS_OUTPUTCAPTURE_H
#define ZEPHRIN2D_TESTS_OUTPUTCAPTURE_H

#include <cstdio>
#include <string>
#include <unistd.h>

/// Captures what the code under test writes to a file descriptor (1 or 2),
/// from construction to finish() or destruction.
class OutputCapture
{
public:
    explicit OutputCapture(int fd) : mFd(fd), mFile(tmpfile()), mSaved(dup(fd)), mDone(false)
    {
        fflush(nullptr);
        dup2(fileno(mFile), fd);
    }
    ~OutputCapture() { finish(); }
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;

    std::string finish()
    {
        if (mDone)
            return std::string();
        mDone = true;
        fflush(nullptr);
        dup2(mSaved, mFd);
        close(mSaved);
        std::string text;
        rewind(mFile);
        for (int c; (c = fgetc(mFile)) != EOF;)
            text += char(c);
        fclose(mFile);
        return text;
    }

private:
    int mFd;
    FILE* mFile;
    int mSaved;
    bool mDone;
};

#endif
